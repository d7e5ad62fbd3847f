"""Local times of a zone, quickly for many seconds in a row."""

import datetime
import time
import zoneinfo

QUARTER = 900


class LocalTime:
    def __init__(self, name):
        self.name = name
        self.zone = zoneinfo.ZoneInfo(name)
        self.offsets = {}

    def offset(self, seconds):
        """Seconds east of Greenwich. No zone changes but at a full quarter of an hour."""
        quarter = seconds // QUARTER
        if quarter not in self.offsets:
            at = datetime.datetime.fromtimestamp(quarter * QUARTER, self.zone)
            self.offsets[quarter] = int(at.utcoffset().total_seconds())
        return self.offsets[quarter]

    def stamp(self, seconds):
        return time.strftime("%Y%m%dT%H%M%S", time.gmtime(seconds + self.offset(seconds)))

    def iso(self, seconds):
        return datetime.datetime.fromtimestamp(seconds, self.zone).isoformat()

    def hour(self, seconds):
        return (seconds + self.offset(seconds)) // 3600 % 24

    def comes_twice(self, seconds):
        """Whether another time has the same local time."""
        at = datetime.datetime.fromtimestamp(seconds, self.zone)
        return at.replace(fold=1 - at.fold).timestamp() != seconds

    def end_of_summer_time(self, year):
        """The second at which an hour of that year begins to come twice, or None."""
        seconds = int(datetime.datetime(year, 1, 1, tzinfo=datetime.timezone.utc).timestamp())
        for hour in range(seconds, seconds + 366 * 86400, 3600):
            if self.offset(hour) > self.offset(hour + 3600):
                return hour + 3600
        return None

    def seconds(self, text):
        """Reads seconds since the epoch, or an ISO time, which is local where it names no zone."""
        if text.isdigit():
            return int(text)
        at = datetime.datetime.fromisoformat(text)
        return int((at if at.tzinfo else at.replace(tzinfo=self.zone)).timestamp())
