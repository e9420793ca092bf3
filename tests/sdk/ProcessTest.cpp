#include <dlfcn.h>
#include <gmock/gmock.h>

#include "support/Capture.h"

using support::captured;
using support::outputOf;

// What a sanitizer adds begins with two underscores, or is the type of a function.
TEST(Process, ExportsTheDocumentedNamesAndNeedsTheRuntimeOnly) {
  EXPECT_EQ(outputOf(NM " -DC --defined-only '" LIBRARY_FILE
                        "' | cut -d ' ' -f 3- | grep -vE '^__|^typeinfo.*\\)$' | LC_ALL=C sort -u"),
            support::readFile(EXPORTED_SYMBOLS));
  EXPECT_EQ(outputOf("readelf -d '" LIBRARY_FILE "' | grep NEEDED | grep -oE '\\[[a-z_+-]+' | "
                     "grep -vE '(a|ub)san|\\[ld|libm$' | LC_ALL=C sort"),
            "[libc\n[libgcc_s\n[libstdc++\n");
}

TEST(Process, LoadsAndUnloadsWithoutATrace) {
  const auto loadOften = [] {
    for (int i = 0; i < 1000; ++i) {
      ASSERT_EQ(dlopen(LIBRARY_FILE, RTLD_NOW | RTLD_NOLOAD), nullptr);
      void* const library = dlopen(LIBRARY_FILE, RTLD_NOW);
      ASSERT_NE(library, nullptr) << dlerror();
      ASSERT_EQ(dlclose(library), 0);
    }
  };
  const std::string held = outputOf("ls /proc/$PPID/fd");
  std::string output;
  output += captured(STDERR_FILENO, [&] { output = captured(STDOUT_FILENO, loadOften); });
  EXPECT_EQ(output, "");
  EXPECT_EQ(outputOf("ls /proc/$PPID/fd"), held);
}
