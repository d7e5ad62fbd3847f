#include "promise.h"

#include <cstdio>
#include <cstdlib>

void require(bool kept, const char* promise) {
  if (!kept) {
    std::fprintf(stderr, "broken promise: %s\n", promise);
    std::abort();
  }
}
