// Keeps exceptions inside the library.
#ifndef KALVISTA_SDK_NO_THROW_H
#define KALVISTA_SDK_NO_THROW_H

#include <exception>
#include <utility>

namespace ardo {

// The result of some work; `failure` when it ends with an exception, as it does without memory.
// What ends a thread from outside is let through.
template <typename Result, typename Work>
Result withoutThrowing(Result failure, Work&& work) {
  try {
    return std::forward<Work>(work)();
  } catch (const std::exception&) {
    return failure;
  }
}

template <typename Work>
void withoutThrowing(Work&& work) {
  try {
    std::forward<Work>(work)();
  } catch (const std::exception&) {
    return;
  }
}

}  // namespace ardo

#endif  // KALVISTA_SDK_NO_THROW_H
