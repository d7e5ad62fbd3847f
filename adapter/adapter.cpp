#include "adapter.h"

#include "messages.h"
#include "system_tool.h"
#include "time_limit.h"

#include <string>
#include <sys/select.h>
#include <unistd.h>

namespace {

std::string inSeconds(std::chrono::seconds time) {
  return std::to_string(time.count()) + (time.count() == 1 ? " second" : " seconds");
}

/// What there is to say about `ending`, and "" when the tool has ended as it should.
std::string describe(const std::string& tool, const Ending& ending, const TimeLimit& limit) {
  const std::string patience = inSeconds(limit.patience);
  if (ending.cause == Cause::TimeLimit) {
    return tool + " had not ended after " + inSeconds(limit.run) + " and was interrupted" +
           (ending.toolKilled ? ", then killed after " + patience + " more" : "");
  }
  if (ending.toolKilled) {
    return tool + " had not ended " + patience + " after a signal to end and was killed";
  }
  if (ending.outputLeft) {
    return "the output of " + tool + " had not ended " + patience + " after it and was left";
  }
  return "";
}

/// Whether a message can be written within `patience`. Where it goes, a pipe may be full.
bool takesMessage(std::chrono::seconds patience) {
  fd_set errors;
  FD_ZERO(&errors);
  FD_SET(STDERR_FILENO, &errors);
  timeval timeout = {patience.count(), 0};
  return select(STDERR_FILENO + 1, nullptr, &errors, nullptr, &timeout) == 1;
}

}  // namespace

int standInFor(const Tool& tool, char** arguments, Filter filter) {
  const std::string path = findSystemTool(tool.name, tool.package);
  const int seconds = lastNumber(arguments, tool.shortOption, tool.longOption);
  const TimeLimit limit = timeLimit(tool.name, seconds, std::chrono::seconds(tool.graceSeconds));
  const ToolRun run = startTool(tool.name, path, arguments, filter);
  const Ending ending = follow(run, limit);
  const std::string description = describe(tool.name, ending, limit);
  if (!description.empty() && takesMessage(limit.patience)) {
    complain(tool.name, description);
  }
  return endLike(run, ending);
}
