#include "adapter/process.h"

#include "support/files.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <iterator>
#include <sstream>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Pipe {
  int readEnd = -1;
  int writeEnd = -1;
};

Pipe makePipe() {
  int ends[2];
  EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
  return {ends[0], ends[1]};
}

/// Puts the end `used` at the descriptor `place` and closes the pipe's own two.
void usePipe(const Pipe& pipe, int used, int place) {
  dup2(used, place);
  close(pipe.readEnd);
  close(pipe.writeEnd);
}

std::string readToEnd(int descriptor) {
  std::string text;
  char block[4096];
  for (ssize_t size = 0; (size = read(descriptor, block, sizeof(block))) > 0;) {
    text.append(block, static_cast<std::size_t>(size));
  }
  return text;
}

[[noreturn]] void execute(std::vector<std::string> arguments) {
  const std::string path = arguments[0];
  arguments[0] = std::filesystem::path(path).filename();
  std::vector<char*> pointers;
  pointers.reserve(arguments.size() + 1);
  for (std::string& argument : arguments) {
    pointers.push_back(argument.data());
  }
  pointers.push_back(nullptr);
  execv(path.c_str(), pointers.data());
  std::perror(path.c_str());
  std::_Exit(EXIT_FAILURE);
}

std::vector<std::string> childrenOf(pid_t process) {
  const std::string id = std::to_string(process);
  std::istringstream children(readFile("/proc/" + id + "/task/" + id + "/children"));
  return {std::istream_iterator<std::string>(children), {}};
}

/// The letter that /proc has for what `process` does.
char stateOf(const std::string& process) {
  const std::string stat = readFile("/proc/" + process + "/stat");
  return stat[stat.rfind(')') + 2];
}

/// Waits until `process` waits for something, or has ended.
void awaitSleep(const std::string& process) {
  while (stateOf(process) == 'R') {
  }
}

/// Waits until `process`, a child that is not reaped, has ended.
void awaitEnd(const std::string& process) {
  while (stateOf(process) != 'Z') {
  }
}

}  // namespace

Terminal::Terminal() : keyboard(posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
  EXPECT_EQ(grantpt(keyboard), 0);
  EXPECT_EQ(unlockpt(keyboard), 0);
}

Terminal::~Terminal() {
  close(keyboard);
}

void Terminal::become(int descriptor) const {
  dup2(open(ptsname(keyboard), O_RDWR), descriptor);
}

void Terminal::press(char key) const {
  EXPECT_EQ(write(keyboard, &key, 1), 1);
}

Process::Process(const std::vector<std::string>& arguments, const std::function<void()>& prepare) {
  const Pipe in = makePipe();
  const Pipe out = makePipe();
  const Pipe err = makePipe();
  process = fork();
  if (process == 0) {
    setsid();
    usePipe(in, in.readEnd, STDIN_FILENO);
    usePipe(out, out.writeEnd, STDOUT_FILENO);
    usePipe(err, err.writeEnd, STDERR_FILENO);
    prepare();
    execute(arguments);
  }
  close(in.readEnd);
  close(out.writeEnd);
  close(err.writeEnd);
  input = in.writeEnd;
  output = out.readEnd;
  errors = err.readEnd;
}

Process::~Process() {
  kill(-process, SIGKILL);
  close(input);
  close(output);
  close(errors);
}

std::string Process::readLine() const {
  std::string line;
  for (char character = 0; !line.ends_with('\n') && read(output, &character, 1) == 1;) {
    line += character;
  }
  return line;
}

std::string Process::readBytes(std::size_t size) const {
  std::string bytes(size, '\0');
  std::size_t count = 0;
  for (ssize_t length = 1; length > 0 && count < size;) {
    length = read(output, bytes.data() + count, size - count);
    count += static_cast<std::size_t>(std::max<ssize_t>(length, 0));
  }
  return bytes.substr(0, count);
}

std::string Process::readOutput() const {
  return readToEnd(output);
}

std::string Process::readErrors() const {
  return readToEnd(errors);
}

void Process::writeInput(const std::string& text) const {
  EXPECT_EQ(write(input, text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

void Process::closeOutput() {
  close(output);
  output = -1;
}

void Process::sendSignal(int signal) const {
  EXPECT_EQ(kill(process, signal), 0);
}

void Process::stop() const {
  sendSignal(SIGSTOP);
  siginfo_t state = {};
  EXPECT_EQ(waitid(P_PID, static_cast<id_t>(process), &state, WSTOPPED), 0);
}

void Process::awaitSleepOfTool() const {
  awaitSleep(childrenOf(process).back());
}

void Process::awaitEndOfFilter() const {
  awaitEnd(childrenOf(process).front());
  awaitSleep(std::to_string(process));
}

void Process::awaitFullOutput() const {
  for (int size = -1; size < fcntl(output, F_GETPIPE_SZ);) {
    ASSERT_EQ(ioctl(output, FIONREAD, &size), 0);
  }
}

std::string Process::end() const {
  int status = 0;
  EXPECT_EQ(waitpid(process, &status, 0), process);
  return WIFSIGNALED(status) ? "killed by signal " + std::to_string(WTERMSIG(status))
                             : "exit status " + std::to_string(WEXITSTATUS(status));
}

std::string Process::result() const {
  std::string text = readOutput();
  text += readErrors();
  return text += end();
}
