// The judgement of a fuzz target.
#pragma once

#include <string>

/// Each target implements this: hands `input` to the readers of one format and checks what they
/// promise.
void readInput(const std::string& input);

/// Ends the process with the name of a `promise` that was not kept.
void require(bool kept, const char* promise);
