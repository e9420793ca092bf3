// What `kalvista lint` finds, and that it finds nothing in what is right.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/Capture.h"
#include "support/TemporaryFolder.h"

namespace {

using support::outputOf;
using ::testing::HasSubstr;

const std::string kTool = std::string(TOOL_FILE) + " -v error ";

// "line:column: path" of each finding.
std::vector<std::string> placesIn(const std::string& document) {
  const support::TemporaryFolder folder;
  const std::string file = support::writeFile(folder.path() + "/file.xml", document);
  std::vector<std::string> places =
      support::linesOf(outputOf(kTool + "lint " + file + " 2>/dev/null"));
  for (std::string& place : places) {
    place = place.substr(file.size() + 1, place.find(": ", place.find(": ") + 1) - file.size() - 1);
  }
  return places;
}

TEST(LintTest, NamesThePlaceOfEveryFault) {
  const std::string range = "CaliData/Temperature/Optics/OpticsDef[1]/TempRanges/TemperatureRange";
  const struct {
    std::string document;
    std::vector<std::string> places;
  } rows[] = {
      {"<imager>\n<fov>010</fov>\n<fov>3</fov>\n<average>\xC3\xA4</average><focus>101</focus>\n"
       "</imager>\n",
       {"2:6: imager/fov", "3:1: imager/fov", "4:10: imager/average", "4:28: imager/focus"}},
      {"<imager>\n<Fov>1</Fov>\n<min>1</min>\n<serial >1</serial>\n<focus/>\n</imager>\n",
       {"2:1: imager/Fov", "3:1: imager/min", "4:1: imager/serial", "5:1: imager/focus"}},
      {"<imager><fov>1</fov>\n<framerate>32,5</framerate>\n<optics_text>a&amp;b</optics_text>\n"
       "<serial>1</serial></imager>",
       {"1:9: imager", "2:12: imager/framerate", "3:15: imager", "4:1: imager"}},
      {"<imager><fov>1</fov></imager>", {"1:1: imager"}},
      {"<imager>\n<!-- <!-- 1 -->\n-->\n<fov>1<!-- 2 -->0</fov>\n-->\n<!--\n</imager>\n",
       {"5:1: imager", "6:1: imager"}},
      {"<imager>\n<fov>" + std::string(4096, ' ') + "1</fov>\n</imager>\n", {"2:1: imager"}},
      {"<!-- <imager -->\n<imager>\n<temperature>\n<min>5</min><max>6</max>\n</imager>\n",
       {"1:6: imager", "3:1: imager/temperature", "4:1: imager/min", "4:13: imager/max"}},
      {"<imager>\n<tchipmode x=1>3</tchipmode>\n<pifmode>0</pifmode>\n</imager>\n<more/>\n",
       {"2:1: imager/tchipmode", "2:14: imager", "2:16: imager/tchipmode", "3:1: imager/pifmode",
        "5:1: document"}},
      {"<CaliData>\n<TecA>1</TecA>\n<Temperature><Optics><OpticsDef><Text>a/b</Text><TempRanges>\n"
       "<TemperatureRange><TempLo>9</TempLo><TempHi>5</TempHi></TemperatureRange>\n"
       "<TemperatureRange><TempLoExt>-100</TempLoExt><TempLo>-200</TempLo><Framerates><Framerate>\n"
       "<FR>65563</FR></Framerate></Framerates></TemperatureRange>\n"
       "</TempRanges></OpticsDef></Optics></Temperature>\n</CaliData>\n",
       {"2:1: CaliData/TecA", "3:39: CaliData/Temperature/Optics/OpticsDef[1]/Text",
        "4:19: " + range + "[1]/TempLo", "6:5: " + range + "[2]/Framerates/Framerate[1]/FR"}},
      {"<Imager>\n</Imager>\n", {"1:1: Imager"}},
      {"no document", {"1:1: document"}},
  };
  for (const auto& row : rows) EXPECT_EQ(placesIn(row.document), row.places) << row.document;
}

TEST(LintTest, TheSampleAndTheDefaultDocumentPass) {
  EXPECT_THAT(placesIn(support::readFile(SAMPLE_CONFIGURATION)), ::testing::IsEmpty());
  EXPECT_THAT(placesIn(outputOf(kTool + "config 12345678")), ::testing::IsEmpty());
  EXPECT_EQ(outputOf("find " SAMPLE_REPOSITORY " -name '*.xml' -exec " + kTool + "lint {} \\;"),
            "");
}

}  // namespace
