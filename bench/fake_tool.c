// A tool that ends at once: prints the file "<its own path>.output", or "<its own path>-R.output"
// when an argument is "-R".
#include <fcntl.h>
#include <stdio.h>
#include <string.h>
#include <unistd.h>

int main(int argc, char** argv) {
  const char* direction = "";
  for (int i = 1; i < argc; ++i) {
    if (strcmp(argv[i], "-R") == 0) {
      direction = "-R";
    }
  }
  char path[256];
  ssize_t length = readlink("/proc/self/exe", path, sizeof path - sizeof "-R.output");
  if (length < 0) {
    return 1;
  }
  strcpy(path + length, direction);
  strcat(path, ".output");
  const int output = open(path, O_RDONLY);
  char buffer[65536];
  while ((length = read(output, buffer, sizeof buffer)) > 0) {
    if (write(STDOUT_FILENO, buffer, (size_t)length) != length) {
      return 1;
    }
  }
  return length == 0 ? 0 : 1;
}
