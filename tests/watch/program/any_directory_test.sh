#!/usr/bin/env bash
# connWatch on log directories that are damaged, far away in time, or nearly empty.
source "$(dirname "$0")/library.sh"

AnyDirectory.IsReadToTheEnd() {
  PYTHONPATH=$here/.. python3 "$here/any_directory.py" "$CONN_WATCH" /tmp/made --seeds 15
}

run_watch_test "$@"
