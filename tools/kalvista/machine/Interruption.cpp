#include "machine/Interruption.h"

#include <algorithm>
#include <iterator>
#include <thread>

namespace tool {
namespace {

constexpr int kSignals[] = {SIGINT, SIGTERM, SIGHUP};

// One that the starter has ignored stays so: the kernel keeps it for us once it is blocked.
bool isIgnored(int signal) {
  struct sigaction action {};
  sigaction(signal, nullptr, &action);
  return action.sa_handler == SIG_IGN;
}

}  // namespace

SignalHold::SignalHold() {
  sigset_t held;
  sigemptyset(&held);
  for (const int signal : kSignals) {
    if (!isIgnored(signal)) sigaddset(&held, signal);
  }
  pthread_sigmask(SIG_BLOCK, &held, &former_);
}

SignalHold::~SignalHold() { pthread_sigmask(SIG_SETMASK, &former_, nullptr); }

bool isInterrupted() {
  sigset_t pending;
  sigemptyset(&pending);
  sigpending(&pending);
  return std::any_of(std::begin(kSignals), std::end(kSignals),
                     [&pending](int signal) { return sigismember(&pending, signal) == 1; });
}

void throwIfInterrupted() {
  if (isInterrupted()) throw Interruption();
}

void pauseFor(std::chrono::milliseconds time) {
  constexpr std::chrono::milliseconds kLook(100);
  for (; time.count() > 0; time -= kLook) {
    throwIfInterrupted();
    std::this_thread::sleep_for(std::min(time, kLook));
  }
  throwIfInterrupted();
}

}  // namespace tool
