// What `kalvista lint` finds, and that it finds nothing in what is right.
#include <dlfcn.h>

#include "support/Transcript.h"

using Lint = InFolder;

namespace {

const std::string kLint = std::string(TOOL_FILE) + " -v error lint ";

}  // namespace

TEST_F(Lint, Transcript) {
  Commands on;
  // Each finding, without the name of the file.
  on["lint"] = [](auto& a) {
    writeFile("x.xml", a[0].text);
    return outputOf(kLint + "x.xml 2> /dev/null | sed 's/^[^:]*://'");
  };
  runTranscript("tools/kalvista/lint/lint.txt", on);
}

TEST_F(Lint, TheSampleAndTheDefaultDocumentPass) {
  EXPECT_EQ(
      outputOf(TOOL_FILE " -v error config 12345678 -o x.xml > /dev/null; " + kLint + "x.xml; " +
               kLint + SAMPLE_CONFIGURATION "; find " SAMPLE_REPOSITORY " -name '*.xml' -exec " +
               kLint + "{} \\;"),
      "");
}

// What takes minutes for each when time or memory grows with the square.
TEST_F(Lint, LargeFilesOfOneKind) {
  // The sanitizers take memory of their own.
  const bool isLimited = dlsym(RTLD_DEFAULT, "__asan_init") == nullptr;
  const std::string limit = isLimited ? "(ulimit -v 400000; " : "(";
  for (const std::string part : {"<a>", "<x/>", "<Fov>1</Fov>\n", "<fov>1</fov>", "<!--", "-->",
                                 "&amp;", "</x>", "<x a=''>", "\x7F<"}) {
    std::string text = "<imager>\n";
    while (text.size() < 1U << 21) text += part;
    writeFile("x.xml", text + "\n</imager>\n");
    EXPECT_EQ(outputOf(limit + kLint + "x.xml > /dev/null 2>&1; echo $?)"), "1\n") << part;
  }
}
