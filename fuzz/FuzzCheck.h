#ifndef TAVCLIENT_FUZZ_FUZZCHECK_H
#define TAVCLIENT_FUZZ_FUZZCHECK_H

#include <cstdio>
#include <cstdlib>

// A broken invariant is a finding: name it, then abort so that libFuzzer keeps the input.
#define FUZZ_CHECK(condition)                                                                    \
  ((condition)                                                                                   \
       ? static_cast<void>(0)                                                                    \
       : (std::fprintf(stderr, "%s:%d: invariant broken: %s\n", __FILE__, __LINE__, #condition), \
          std::abort()))

#endif
