"""The log directory as the tester keeps it: histories, archives, the verbose log, the latest files."""

import os

# The histories: the live file, and how the names of its archived files begin.
HISTORIES = {
    "ping": ("ping_history.log", "ping_history"),
    "forward": ("iperf3_history_forward_csv.log", "iperf3_history_forward"),
    "reverse": ("iperf3_history_reverse_csv.log", "iperf3_history_reverse"),
    "result": ("connection_test_results_history.log", "connection_test_results_history"),
}
VERBOSE = "ping_history_verbose.log"
FULL_HISTORY_LINES = 10


def archive_name(kind, stamp):
    return f"archive/{HISTORIES[kind][1]}_{stamp}.log"


class HistoryFile:
    """Lines that are together in one file. Its name changes when it moves to the archive."""

    def __init__(self, name):
        self.name = name
        self.lines = []
        self.written = None


class LogDirectory:
    """Takes what the tester writes, in its order. Each time is that of the workstation's clock."""

    def __init__(self, path):
        self.path = path
        os.makedirs(os.path.join(path, "archive"))
        self.live = {kind: HistoryFile(names[0]) for kind, names in HISTORIES.items()}
        self.archived = set()
        self.latest = {}
        self.verbose_lines = 0
        self.verbose_written = None
        self.verbose = open(os.path.join(path, VERBOSE), "w", encoding="ascii")

    def append(self, kind, line, now, stamp):
        """Adds a line to a history and moves it when it is full. Returns the line's file, its number
        and whether it has moved."""
        history = self.live[kind]
        history.lines.append(line)
        history.written = now
        number = len(history.lines)
        moves = number >= FULL_HISTORY_LINES
        if moves:
            self._move(kind, history, stamp, now)
        return history, number, moves

    def is_free(self, stamp, after=None):
        """Whether no move under this stamp replaces an archived file: of any history, or of those that
        a run writes after the given one."""
        kinds = list(HISTORIES)
        later = kinds[kinds.index(after) + 1:] if after else kinds
        return all(archive_name(kind, stamp) not in self.archived for kind in later)

    def append_verbose(self, lines, now):
        """Adds a ping's output; returns its first and its last line, or None for no output."""
        self.verbose_written = now
        if not lines:
            return None
        self.verbose.write("\n".join(lines) + "\n")
        first = self.verbose_lines + 1
        self.verbose_lines += len(lines)
        return first, self.verbose_lines

    def replace(self, name, text, now):
        """Writes one of the latest files. `text` is that, or a function that gives it."""
        self.latest[name] = (text, now)

    def close(self):
        """Writes what is not archived. Nothing stands in the directory of what never was written."""
        self.verbose.close()
        if self.verbose_written is None:
            os.remove(os.path.join(self.path, VERBOSE))
        else:
            self._set_time(VERBOSE, self.verbose_written)
        for history in self.live.values():
            if history.lines:
                self._write(history.name, "\n".join(history.lines) + "\n", history.written)
        for name, (text, now) in self.latest.items():
            self._write(name, text() if callable(text) else text, now)

    def _move(self, kind, history, stamp, now):
        history.name = archive_name(kind, stamp)
        assert history.name not in self.archived
        self.archived.add(history.name)
        self._write(history.name, "\n".join(history.lines) + "\n", history.written)
        self.live[kind] = HistoryFile(HISTORIES[kind][0])
        # The shell opens this file for the messages of all moves but the results'.
        if kind != "result":
            self.latest["nul"] = ("", now)

    def _write(self, name, text, now):
        with open(os.path.join(self.path, name), "w", encoding="ascii") as file:
            file.write(text)
        self._set_time(name, now)

    def _set_time(self, name, now):
        os.utime(os.path.join(self.path, name), (now, now))
