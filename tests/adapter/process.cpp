#include "adapter/process.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <sstream>
#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Pipe {
  int readEnd = -1;
  int writeEnd = -1;
};

Pipe makePipe() {
  int ends[2];
  EXPECT_EQ(pipe(ends), 0);
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
  arguments[0] = "ping";
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

}  // namespace

std::string readFile(const std::string& path) {
  const std::ifstream file(path, std::ios::binary);
  EXPECT_TRUE(file.good()) << path;
  std::ostringstream text;
  text << file.rdbuf();
  return text.str();
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

void Process::awaitSleepOfChild() const {
  const std::string id = std::to_string(process);
  const std::string child = readFile("/proc/" + id + "/task/" + id + "/children");
  const std::string stat = "/proc/" + child.substr(0, child.find(' ')) + "/stat";
  while (readFile(stat).find(") R ") != std::string::npos) {
  }
}

std::string Process::end() const {
  int status = 0;
  EXPECT_EQ(waitpid(process, &status, 0), process);
  return WIFSIGNALED(status) ? "killed by signal " + std::to_string(WTERMSIG(status))
                             : "exit status " + std::to_string(WEXITSTATUS(status));
}
