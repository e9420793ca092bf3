#include <clocale>
#include <csignal>

#include "support/Memory.h"
#include "support/Transcript.h"

using Xml = InFolder;
using ardo::SimpleXML;

TEST_F(Xml, Transcript) {
  std::setlocale(LC_ALL, "C.UTF-8");
  SimpleXML xml;
  EXPECT_STREQ(std::setlocale(LC_NUMERIC, nullptr), "C");
  EXPECT_NE(ardo::compTokens({1, 3}, {0, 4}), ardo::compTokens({1, 4}, {0, 4}));
  const auto open = [&xml](const char* file) {
    if (!xml.open(file, "r") || !xml.setNode()) return "refused"s;
    return (xml.hasRoot() ? "" : "no root") + shown(xml.buffer);
  };
  char* text = nullptr;
  const auto withText = [&text](bool found) {
    const std::unique_ptr<char[]> owned(std::exchange(text, nullptr));
    return shown(found, shown(owned.get()));
  };
  Commands on;
  on["load"] = [&](auto& a) { return open(writeFile("x.xml", a[0].text).c_str()); };
  on["open"] = [&](auto& a) { return open(a[0]); };
  on["openIn"] = [&](auto& a) { return shown(xml.open(a[0], a[1], "r") && xml.setNode()); };
  on["openAsNobody"] = [&](auto& a) {
    return shown(asUnprivilegedUser([&] { return xml.open(a[0], "r"); }));
  };
  on["length"] = [&](auto&) { return shown(xml.length); };
  on["text"] = [&](auto&) { return shown(xml.buffer); };
  on["enter"] = [&](auto& a) { return shown(xml.setNode(a[0]), xml.depth); };
  on["enterAt"] = [&](auto& a) { return shown(xml.setNode(a[0], a[1]), xml.depth); };
  // Through n1, n2, and so on, as deep as it goes.
  on["descend"] = [&](auto& a) {
    while (xml.setNode((a[0].text + shown(xml.depth + 1)).c_str(), 0)) continue;
    return shown(xml.depth);
  };
  on["leave"] = [&](auto&) { return shown(xml.resetNode(), xml.depth); };
  on["count"] = [&](auto& a) { return shown(xml.getNodeCount(a[0])); };
  on["find"] = [&](auto& a) { return shown(xml.getKey(a[0], a[1], a[2], a[3])); };
  on["node"] = [&](auto&) { return withText(xml.getNode(&text)); };
  on["string"] = [&](auto& a) { return withText(xml.getString(text = a[0], &text)); };
  on["numbers"] = [&xml](auto& a) {
    auto [i, l, f] = std::make_tuple(9, 9L, 9.0F);
    const int found = xml.getInt(a[0], &i) + xml.getLong(a[0], &l) + xml.getFloat(a[0], &f);
    return found == 3 ? shown(i, l, f) : shown(found, i, l, f);
  };
  const auto countByWalking = [&xml](const char* name) {
    int i = 0;
    while (xml.setNode(name, i) && xml.resetNode()) ++i;
    return i;
  };
  on["walk"] = [&](auto& a) { return shown(countByWalking(a[0])); };
  // Documents that differ in the place of the root's end within a block.
  on["blocks"] = [&](auto& a) {
    std::string elements;
    for (int i = 0; i < 4680; ++i) elements += "<a>123456</a>\n";
    for (int size = 1; size <= int{a[0]}; ++size) {
      writeFile("x.xml", "<r>\n" + elements + std::string(static_cast<std::size_t>(size), 'y') +
                             "\n</r>\nno");
      xml.open("x.xml", "r");
      xml.setNode();
      if (xml.length != 4680 * 13 + size) return shown(size, xml.length);
      if (countByWalking("a") != 4680) return shown(size);
    }
    return "4680 every time"s;
  };
  on["limitMemory"] = [](auto& a) {
    limitMemory(a[0]);
    return "";
  };
  runTranscript("sdk/xml/xml.txt", on);
}

// The holder of a lease is asked for it by a signal, and the reader waits, whatever signals come.
TEST_F(Xml, WaitsForAFileUnderALease) {
  static int leased = open(writeFile("x.xml", "<r>\n1\n</r>").c_str(), O_RDWR | O_CLOEXEC);
  struct sigaction action {};
  action.sa_handler = [](int signal) {
    if (signal == SIGIO) ualarm(10000, 0);
    if (signal == SIGALRM) fcntl(leased, F_SETLEASE, F_UNLCK);
  };
  for (const int signal : {SIGIO, SIGALRM}) sigaction(signal, &action, nullptr);
  if (fcntl(leased, F_SETLEASE, F_WRLCK) != 0) GTEST_SKIP() << "no leases on this file system";
  SimpleXML xml;
  EXPECT_TRUE(close(0) == 0 && xml.open("x.xml", "r") && xml.hasRoot());
  EXPECT_EQ(open("/dev/null", O_RDONLY), 0);
}
