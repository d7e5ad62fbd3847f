#include "views/export.h"
#include "views/flat_sink.h"

#include <memory>
#include <sqlite3.h>
#include <stdexcept>

namespace watch {

namespace {

struct Close {
  void operator()(sqlite3* database) const { sqlite3_close(database); }
  void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

class Database {
 public:
  /// The file is the one where `output` grows.
  explicit Database(const Output& output) : name_(output.name()) {
    sqlite3* database = nullptr;
    const int status = sqlite3_open(output.temporary().c_str(), &database);
    database_.reset(database);
    check(status == SQLITE_OK);
  }

  void run(const std::string& statement) {
    check(sqlite3_exec(database_.get(), statement.c_str(), nullptr, nullptr, nullptr) == SQLITE_OK);
  }
  std::unique_ptr<sqlite3_stmt, Close> prepare(const std::string& statement) {
    sqlite3_stmt* prepared = nullptr;
    check(sqlite3_prepare_v2(database_.get(), statement.c_str(), -1, &prepared, nullptr) ==
          SQLITE_OK);
    return std::unique_ptr<sqlite3_stmt, Close>(prepared);
  }
  void check(bool worked) const {
    if (!worked) {
      throw std::runtime_error(name_ + ": " + sqlite3_errmsg(database_.get()));
    }
  }

 private:
  std::string name_;
  std::unique_ptr<sqlite3, Close> database_;
};

/// Binds the members of a record to a statement's parameters, the first to the second: the one
/// before is `seconds`.
class BindSink : public FlatSink {
 public:
  BindSink(sqlite3_stmt* statement, const std::vector<std::string>& files)
      : FlatSink(files), statement_(statement) {}

  void nothing(const char* /*key*/) override { sqlite3_bind_null(statement_, ++last_); }
  void text(const char* /*key*/, std::string_view value) override {
    sqlite3_bind_text(statement_, ++last_, value.data(), static_cast<int>(value.size()),
                      SQLITE_TRANSIENT);
  }
  void boolean(const char* /*key*/, bool value) override {
    sqlite3_bind_int(statement_, ++last_, value ? 1 : 0);
  }
  void whole(const char* /*key*/, std::int64_t value) override {
    sqlite3_bind_int64(statement_, ++last_, value);
  }
  void number(const char* /*key*/, double value) override {
    sqlite3_bind_double(statement_, ++last_, value);
  }

 private:
  sqlite3_stmt* statement_;
  int last_ = 1;
};

const char* sqlType(ColumnKind kind) {
  switch (kind) {
    case ColumnKind::text:
      return "TEXT";
    case ColumnKind::number:
      return "REAL";
    case ColumnKind::boolean:
    case ColumnKind::whole:
      break;
  }
  return "INTEGER";
}

}  // namespace

void exportSqlite(std::span<const Run> runs, const std::vector<std::string>& files,
                  Output& output) {
  std::string columns = "seconds INTEGER";
  std::string parameters = "?";
  for (const Column& column : flatColumns()) {
    columns += ", \"" + column.name + "\" " + sqlType(column.kind);
    parameters += ", ?";
  }
  Database database(output);
  // The file takes its place when it is whole: until then, nothing needs to be kept.
  database.run("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF; BEGIN");
  database.run("CREATE TABLE runs (" + columns + ") STRICT");
  const auto insert = database.prepare("INSERT INTO runs VALUES (" + parameters + ")");
  for (const Run& run : runs) {
    sqlite3_reset(insert.get());
    run.time ? sqlite3_bind_int64(insert.get(), 1, *run.time) : sqlite3_bind_null(insert.get(), 1);
    BindSink sink(insert.get(), files);
    writeRecord(run, sink);
    database.check(sqlite3_step(insert.get()) == SQLITE_DONE);
  }
  database.run("CREATE INDEX runs_by_time ON runs (seconds); COMMIT");
}

}  // namespace watch
