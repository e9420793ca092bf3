// Default routes, counted by the real command in network namespaces of the test's own.
#include <gtest/gtest.h>
#include <kalvista/IRCalibrationManager.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "real_parts/OwnNamespaces.h"

namespace {

bool isAccessible() { return ardo::IRCalibrationManager::isOnlineCalibrationRepoAccessible(); }

TEST(DefaultRouteTest, ExactlyOneDefaultRouteIsAWayOut) {
  if (access("/sbin/route", X_OK) != 0 || std::system("ip -V > /dev/null 2>&1") != 0) {
    GTEST_SKIP() << "the commands ip and /sbin/route are missing (Debian: iproute2, net-tools)";
  }
  const std::string wired =
      "ip link add wired type veth peer name switch && ip link set switch up && "
      "ip link set wired up && ip address add 192.0.2.1/24 dev wired";
  const std::string first = " && ip route add default via 192.0.2.2 dev wired";
  const std::string second = " && ip route add default via 192.0.2.3 dev wired metric 600";
  const struct {
    std::string network;
    bool accessible;
  } rows[] = {{wired, false}, {wired + first, true}, {wired + first + second, false}};
  for (const auto& row : rows) {
    if (!enterOwnNamespaces(CLONE_NEWNET)) GTEST_SKIP() << "a network of its own needs root";
    if (std::system(row.network.c_str()) != 0) GTEST_SKIP() << "no veth pairs on this kernel";
    EXPECT_EQ(isAccessible(), row.accessible) << row.network;
  }
}

TEST(DefaultRouteTest, WithoutTheCommandThereIsNone) {
  if (!enterOwnNamespaces(CLONE_NEWNS) ||
      mount("/dev/null", "/sbin/route", nullptr, MS_BIND, nullptr) != 0) {
    GTEST_SKIP() << "hiding /sbin/route needs root, and the command itself";
  }
  EXPECT_FALSE(isAccessible());
}

}  // namespace
