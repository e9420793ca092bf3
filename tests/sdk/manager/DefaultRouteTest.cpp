// Default routes, counted by the real command in network namespaces of the test's own.
#include <gtest/gtest.h>
#include <kalvista/IRCalibrationManager.h>

#include <cstdlib>

#include "support/OwnNamespaces.h"

TEST(DefaultRouteTest, ExactlyOneIsAWayOut) {
  if (std::system("ip -V > /dev/null 2>&1 && test -x /sbin/route") != 0) {
    GTEST_SKIP() << "ip or /sbin/route are missing (Debian: iproute2, net-tools)";
  }
  const std::string wired =
      "ip link add wired type veth peer name switch && ip link set switch up && "
      "ip link set wired up && ip address add 192.0.2.1/24 dev wired";
  const std::string first = " && ip route add default via 192.0.2.2 dev wired";
  const std::string second = " && ip route add default via 192.0.2.3 dev wired metric 600";
  const std::string hidden = " && mount --bind /dev/null /sbin/route";
  for (const auto& network :
       {wired, wired + first, wired + first + second, wired + first + hidden}) {
    if (!enterOwnNamespaces(CLONE_NEWNET | CLONE_NEWNS)) GTEST_SKIP() << "needs root";
    ASSERT_EQ(std::system(network.c_str()), 0) << network;
    EXPECT_EQ(ardo::IRCalibrationManager::isOnlineCalibrationRepoAccessible(),
              network == wired + first)
        << network;
  }
}
