#include "views/export.h"

#include "support/files.h"
#include "watch/support/made_runs.h"
#include "watch/support/zone.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <sqlite3.h>

namespace watch {
namespace {

const std::vector<std::string> kFiles = {
    "connection_test_results_history.log", "archive/ping_history_20261121T050112.log",
    "ping_history_verbose.log", "iperf3_history_forward_csv.log", "a,\"b\"\r\nc.log"};

constexpr char kWhole[] =
    R"({"time":"2026-11-21T09:00:00Z","local":"2026-11-21T10:00:00+01:00","time_source":"ping",)"
    R"("fold_unresolved":false,"class":"ok","finished":true,"reason":null,"server":"192.0.2.10",)"
    R"("orphan":false,"unsure":null,)"
    R"("ping":{"state":"replied","min_ms":12.1,"avg_ms":13.0,"max_ms":15.2,"stddev_ms":0.8,)"
    R"("sent":10,"received":10,"loss_percent":0.0},)"
    R"("write":{"state":"full","bps":41034752,"bytes":51300000,"seconds":10.0,"duration":10,)"
    R"("retransmits":null,"rtt_ms":null,"reason":null},)"
    R"("read":{"state":"full","bps":244012345,"bytes":305100000,"seconds":10.003,"duration":10,)"
    R"("retransmits":null,"rtt_ms":null,"reason":null},)"
    R"("from":{"result":[["connection_test_results_history.log",4,4]],)"
    R"("ping":[["archive/ping_history_20261121T050112.log",10,10]],)"
    R"("verbose":[["ping_history_verbose.log",1,6]],)"
    R"("forward":[["iperf3_history_forward_csv.log",5,5]],)"
    R"("reverse":[["a,\"b\"\r\nc.log",6,6]],"journal":[]}})";

constexpr char kOrphan[] =
    R"({"time":null,"local":null,"time_source":null,)"
    R"("fold_unresolved":false,"class":"partial","finished":false,)"
    R"("reason":"only the output of a ping","server":null,)"
    R"("orphan":true,"unsure":"of one of two runs",)"
    R"("ping":{"state":"unread","min_ms":12.0,"avg_ms":12.5,"max_ms":13.0,"stddev_ms":null,)"
    R"("sent":10,"received":7,"loss_percent":30.0},)"
    R"("write":{"state":"off","bps":null,"bytes":null,"seconds":null,"duration":null,)"
    R"("retransmits":null,"rtt_ms":null,"reason":null},)"
    R"("read":{"state":"off","bps":null,"bytes":null,"seconds":null,"duration":null,)"
    R"("retransmits":null,"rtt_ms":null,"reason":null},)"
    R"("from":{"result":[],"ping":[],"verbose":[["ping_history_verbose.log",1,6]],)"
    R"("forward":[],"reverse":[],"journal":[]}})";

constexpr char kHeader[] =
    "time,local,time_source,fold_unresolved,class,finished,reason,server,orphan,unsure,"
    "ping_state,ping_min_ms,ping_avg_ms,ping_max_ms,ping_stddev_ms,ping_sent,ping_received,"
    "ping_loss_percent,write_state,write_bps,write_bytes,write_seconds,write_duration,"
    "write_retransmits,write_rtt_ms,write_reason,read_state,read_bps,read_bytes,read_seconds,"
    "read_duration,read_retransmits,read_rtt_ms,read_reason,from_result,from_ping,from_verbose,"
    "from_forward,from_reverse,from_journal\n";

class Export : public testing::Test {
 protected:
  Export() { std::filesystem::create_directory(folder); }
  ~Export() override { std::filesystem::remove_all(folder); }

  void write(void (*format)(std::span<const watch::Run>, const std::vector<std::string>&, Output&),
             const std::vector<watch::Run>& runs) const {
    Output output(file);
    format(runs, kFiles, output);
    output.finish();
  }

  const std::filesystem::path folder = testing::TempDir() + "watch_export_test";
  const std::filesystem::path file = folder / "runs";
  Zone berlin{"Europe/Berlin"};
};

TEST_F(Export, WritesEachRunAsAnObjectOfAllMembers) {
  write(exportJsonl, {okRun(kNow), orphan()});

  EXPECT_EQ(readFile(file), std::string(kWhole) + "\n" + kOrphan + "\n");
}

TEST_F(Export, KeepsTheOrderOfManyRuns) {
  constexpr std::string_view kServer = R"("server":)";
  const std::size_t server = std::string_view(kOrphan).find(kServer) + kServer.size();
  for (const std::size_t count : {511U, 512U, 513U, 1024U, 1025U, 1300U}) {
    SCOPED_TRACE(count);
    std::vector<watch::Run> runs;
    std::string lines;
    for (std::size_t i = 0; i < count; ++i) {
      runs.push_back(orphan());
      runs.back().server = std::to_string(i);
      lines += std::string(kOrphan).replace(server, std::strlen("null"),
                                            '"' + runs.back().server + '"') +
               "\n";
    }

    write(exportJsonl, runs);

    EXPECT_TRUE(readFile(file) == lines);
  }
}

TEST_F(Export, EscapesInJsonWhatCouldEndAString) {
  watch::Run run = okRun(kNow);
  run.server = "\"\\\n\x01";
  write(exportJsonl, {run});

  const std::string text = readFile(file);

  EXPECT_NE(text.find(R"("server":"\"\\\n\u0001","orphan")"), std::string::npos) << text;
  EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 1);
}

TEST_F(Export, WritesTheSameMembersAsColumns) {
  write(exportCsv, {okRun(kNow), failedRun({})});

  EXPECT_EQ(readFile(file),
            std::string(kHeader) +
                "2026-11-21T09:00:00Z,2026-11-21T10:00:00+01:00,ping,false,ok,true,,192.0.2.10,"
                "false,,replied,12.1,13,15.2,0.8,10,10,0,full,41034752,51300000,10,10,,,,full,"
                "244012345,305100000,10.003,10,,,,connection_test_results_history.log:4,"
                "archive/ping_history_20261121T050112.log:10,ping_history_verbose.log:1-6,"
                "iperf3_history_forward_csv.log:5,\"a,\"\"b\"\"\r\nc.log:6\",\n"
                ",,,false,failed,true,\"no reply, no test\",,false,,no_reply,,,,,10,0,100,no_test,"
                ",,,,,,,no_test,,,,,,,,connection_test_results_history.log:5,,,,,\n");
}

TEST_F(Export, WritesOnlyAHeaderForNoRuns) {
  write(exportCsv, {});
  EXPECT_EQ(readFile(file), kHeader);

  write(exportJsonl, {});
  EXPECT_EQ(readFile(file), "");
}

/// All rows that a statement gives, a line each, with the types of the values.
std::string rowsOf(const std::filesystem::path& path, const char* statement) {
  sqlite3* database = nullptr;
  sqlite3_open_v2(path.c_str(), &database, SQLITE_OPEN_READONLY, nullptr);
  const std::unique_ptr<sqlite3, int (*)(sqlite3*)> closed(database, sqlite3_close);
  sqlite3_stmt* prepared = nullptr;
  if (sqlite3_prepare_v2(database, statement, -1, &prepared, nullptr) != SQLITE_OK) {
    return sqlite3_errmsg(database);
  }
  const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt*)> ended(prepared, sqlite3_finalize);
  constexpr const char* kTypes[] = {"", "integer ", "real ", "text ", "blob ", "null"};
  std::string rows;
  while (sqlite3_step(prepared) == SQLITE_ROW) {
    for (int i = 0; i < sqlite3_column_count(prepared); ++i) {
      rows += i > 0 ? "|" : "";
      rows += kTypes[sqlite3_column_type(prepared, i)];
      const unsigned char* const text = sqlite3_column_text(prepared, i);
      rows += text == nullptr ? "" : reinterpret_cast<const char*>(text);
    }
    rows += '\n';
  }
  return rows;
}

TEST_F(Export, WritesATableWithTheColumnsAndTheSeconds) {
  write(exportSqlite, {okRun(kNow), failedRun({})});

  std::string names;
  std::string columns = rowsOf(file, "SELECT name FROM pragma_table_info('runs')");
  for (std::size_t i = columns.find('\n'); i != std::string::npos; i = columns.find('\n')) {
    names += (names.empty() ? "" : ",") + columns.substr(5, i - 5);
    columns.erase(0, i + 1);
  }
  EXPECT_EQ(names + "\n", std::string("seconds,") + kHeader);
  EXPECT_EQ(rowsOf(file, "SELECT strict FROM pragma_table_list('runs')"), "integer 1\n");
  EXPECT_EQ(rowsOf(file, "PRAGMA integrity_check"), "text ok\n");
  EXPECT_EQ(
      rowsOf(file, "SELECT * FROM runs"),
      "integer 1795251600|text 2026-11-21T09:00:00Z|text 2026-11-21T10:00:00+01:00|text ping|"
      "integer 0|text ok|integer 1|null|text 192.0.2.10|integer 0|null|text replied|real 12.1|"
      "real 13.0|real 15.2|real 0.8|integer 10|integer 10|real 0.0|text full|integer 41034752|"
      "integer 51300000|real 10.0|integer 10|null|null|null|text full|integer 244012345|"
      "integer 305100000|real 10.003|integer 10|null|null|null|"
      "text connection_test_results_history.log:4|"
      "text archive/ping_history_20261121T050112.log:10|text ping_history_verbose.log:1-6|"
      "text iperf3_history_forward_csv.log:5|text a,\"b\"\r\nc.log:6|null\n"
      "null|null|null|null|integer 0|text failed|integer 1|text no reply, no test|null|integer 0|"
      "null|text no_reply|null|null|null|null|integer 10|integer 0|real 100.0|text no_test|null|"
      "null|null|null|null|null|null|text no_test|null|null|null|null|null|null|null|"
      "text connection_test_results_history.log:5|null|null|null|null|null\n");
}

TEST_F(Export, ReplacesADatabaseThatWasThere) {
  write(exportSqlite, {okRun(kNow), okRun(kNow + 1)});
  write(exportSqlite, {okRun(kNow)});

  EXPECT_EQ(rowsOf(file, "SELECT count(*) FROM runs"), "integer 1\n");
  EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder), {}), 1);
}

}  // namespace
}  // namespace watch
