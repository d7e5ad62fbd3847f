#include "standard_streams.h"

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

void prepareStandardStreams() {
  int descriptor = open("/dev/null", O_RDWR);
  while (descriptor >= 0 && descriptor <= STDERR_FILENO) {
    descriptor = open("/dev/null", O_RDWR);
  }
  if (descriptor > STDERR_FILENO) {
    close(descriptor);
  }
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
}
