// The libraries that a user would read calibration files with instead, each behind one function.
#ifndef KALVISTA_BENCH_PEERS_PEER_H
#define KALVISTA_BENCH_PEERS_PEER_H

#include <kalvista/Cali.h>

namespace bench {

struct Peer {
  const char* name;
  // Fills a new calibration from a well-formed file; throws when the file cannot be read.
  void (*load)(const char* path, ConfigCali& calibration);
};

extern const Peer kPugixml;
extern const Peer kRapidxml;
extern const Peer kTinyxml2;
extern const Peer kExpat;
extern const Peer kLibxml2;

inline constexpr const Peer* kPeers[] = {&kPugixml, &kRapidxml, &kTinyxml2, &kExpat, &kLibxml2};

}  // namespace bench

#endif  // KALVISTA_BENCH_PEERS_PEER_H
