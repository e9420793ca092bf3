// Addresses of web servers: how they are made, and how they are shown.
#ifndef KALVISTA_TOOL_ADDRESS_H
#define KALVISTA_TOOL_ADDRESS_H

#include <string>

namespace tool {

// True of http and https addresses.
bool isWebAddress(const std::string& address);

// Where a file of a camera lies below the base address of a repository.
std::string addressOf(const std::string& base, unsigned long serial, const std::string& name);
// The same below a folder, without escapes: "12/1234/Califiles SN12345678".
std::string folderOf(unsigned long serial);

// The address without the name and the password that it may hold.
std::string shownAddress(const std::string& address);
// A sentence of the network library, which may quote the address of a proxy.
std::string shownCause(std::string cause);

}  // namespace tool

#endif  // KALVISTA_TOOL_ADDRESS_H
