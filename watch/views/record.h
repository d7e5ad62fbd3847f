// The record of a run in exports: its members, in their order, said once for all formats.
// docs/files.md describes them.
#pragma once

#include "evidence/source.h"
#include "runs/run.h"

#include <cstdint>
#include <initializer_list>
#include <span>
#include <string>
#include <string_view>

namespace watch {

/// Takes the members of a record. Members of a group stand between its begin and its end.
class RecordSink {
 public:
  RecordSink() = default;
  RecordSink(const RecordSink&) = delete;
  RecordSink& operator=(const RecordSink&) = delete;
  virtual ~RecordSink() = default;

  virtual void begin(const char* group) = 0;
  virtual void end() = 0;
  /// There is nothing to say.
  virtual void nothing(const char* key) = 0;
  virtual void text(const char* key, std::string_view value) = 0;
  virtual void boolean(const char* key, bool value) = 0;
  virtual void whole(const char* key, std::int64_t value) = 0;
  virtual void number(const char* key, double value) = 0;
  virtual void numbers(const char* key, std::initializer_list<double> values) = 0;
  virtual void sources(const char* key, std::span<const Source> value) = 0;
};

/// Gives the members of the record of `run` to `sink`.
void writeRecord(const Run& run, RecordSink& sink);

}  // namespace watch
