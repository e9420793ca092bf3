// What `kalvista lint` finds, and that it finds nothing in what is right.
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
