// The zone of the workstation, for a test.
#pragma once

/// Sets TZ to `zone`, and back at its end.
class Zone {
 public:
  explicit Zone(const char* zone);
  ~Zone();
  Zone(const Zone&) = delete;
  Zone& operator=(const Zone&) = delete;
};
