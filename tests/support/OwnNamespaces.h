// Namespaces of a test's own, in which it lays out what belongs to the whole machine.
#ifndef KALVISTA_TESTS_SUPPORT_OWN_NAMESPACES_H
#define KALVISTA_TESTS_SUPPORT_OWN_NAMESPACES_H

#include <sched.h>
#include <sys/mount.h>

#include <string>

// Moves the process for good: each test is a process of its own. False without the permission.
inline bool enterOwnNamespaces(int kinds) {
  if (unshare(kinds) != 0) return false;
  return (kinds & CLONE_NEWNS) == 0 ||
         mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

inline bool mountTmpfs(const std::string& folder, const char* options = nullptr) {
  return mount("tmpfs", folder.c_str(), "tmpfs", 0, options) == 0;
}

#endif  // KALVISTA_TESTS_SUPPORT_OWN_NAMESPACES_H
