// What `kalvista lint` finds, and that it finds nothing in what is right.
#include "support/Memory.h"
#include "support/Transcript.h"

using Lint = InFolder;

namespace {

// Paths may have blanks.
const std::string kTool = "'" TOOL_FILE "' -v error ";
const std::string kLint = kTool + "lint ";

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
      outputOf(kTool + "config 12345678 -o x.xml > /dev/null; " + kLint + "x.xml; " + kLint +
               "'" SAMPLE_CONFIGURATION "'; find '" SAMPLE_REPOSITORY "' -name '*.xml' -exec " +
               kLint + "{} \\;"),
      "");
}

// Editors check by the schemas. What sed makes of the sample is wrong to both, first in the same
// line.
TEST_F(Lint, TheSchemasAgree) {
  if (outputOf("command -v xmllint").empty()) GTEST_SKIP() << "not installed: xmllint";
  const std::string first = " x.xml 2>&1 | sed -n 's/^\\S*x.xml:\\([0-9]*\\):.*/\\1/p' | head -1";
  const auto expectSame = [&](const std::string& sample, const std::string& schema,
                              const std::vector<std::string>& edits) {
    for (const std::string& edit : edits) {
      outputOf("sed '" + edit + "' " + sample + " > x.xml");
      const std::string line = outputOf(kLint + first);
      EXPECT_EQ(line.empty(), edit.empty()) << schema << ": " << edit;
      EXPECT_EQ(line, outputOf("xmllint --noout --schema '" SCHEMAS "/" + schema + "'" + first))
          << edit;
    }
  };
  expectSame("'" SAMPLE_CONFIGURATION "'", "device-configuration.xsd",
             {"", "s/>100</>010</", "s/>32.0</>32,5</", "s/fov>/fow>/g",
              "s/<focus>/<focus unit=\"percent\">/", "s/>50.0</>150</", "s/>macro</> macro</",
              "s/<average>.*/<min>1<\\/min>/", "s/<bispectral>.*/&&/", "s/<autoflag>/&x/"});
  expectSame("'"s + kSample + "/'*.xml", "calibration.xsd",
             {"", "s/<FR>27/<FR>65563/", "s/>33</>0</", "s/>macro</>ma*ro</", "s/>true</>yes</I",
              "s/TecB>/TecX>/g"});
}

// What takes minutes for each when time or memory grows with the square.
TEST_F(Lint, LargeFilesOfOneKind) {
  const std::string limit = canLimitMemory() ? "(ulimit -v 400000; " : "(";
  for (const std::string part : {"<a>", "<x/>", "<Fov>1</Fov>\n", "<fov>1</fov>", "<!--", "-->",
                                 "&amp;", "</x>", "<x a=''>", "\x7F<"}) {
    std::string text = "<imager>\n";
    while (text.size() < 1U << 21) text += part;
    writeFile("x.xml", text + "\n</imager>\n");
    EXPECT_EQ(outputOf(limit + kLint + "x.xml > /dev/null 2>&1; echo $?)"), "1\n") << part;
  }
}
