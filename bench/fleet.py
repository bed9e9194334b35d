"""Measures a fleet: surveys of an archive, its shards and their merge, and the report of one."""

import pathlib
import shlex
import shutil
import tempfile

import processes
import samples
from text_table import megabytes, milliseconds

FEW = 3_000  # computers that get a process each

# Another machine's shard, which has next to none of the computers.
ALMOST_NONE = "1/999999"


class Archive:
    """An archive of so many computers, of the examples that match the pattern, and commands over it."""

    def __init__(self, lab, path, count, pattern="*"):
        self.lab = lab
        self.count = count
        self.path = path
        self.payload = samples.EXAMPLES / "payload"
        samples.write_archive(path, count, pattern)

    def over(self, verb, *options):
        return [self.lab, verb, "-p", self.payload, *options, self.path]

    def survey(self, *options):
        return self.over("survey", "--format", "ndjson", *options)


def measure(bench):
    """In the build directory, since the archive and the results need some hundred bytes a computer."""
    if shutil.which("zstd") is None:
        return bench.leave_out("fleet", "zstd is missing")
    with tempfile.TemporaryDirectory(prefix="fleet-", dir=bench.build) as directory:
        directory = pathlib.Path(directory)
        counts = [max(1, bench.computers // fraction) for fraction in (100, 10, 1)]
        archives = [Archive(bench.lab, directory / f"{count}.tar.zst", count) for count in counts]
        measure_surveys(bench, archives)
        measure_processes(bench, archives[-1], directory)
        measure_shards(bench, archives[1], directory)
        measure_payloads(bench, directory, counts[0])
        measure_report(bench, archives[1], directory)


def shell(words):
    """The command as text for the shell."""
    return shlex.join(str(word) for word in words)


def rate(count, seconds):
    return f"{seconds:.2f} s, {count / seconds:,.0f} a second"


def each(count, seconds):
    return f"{seconds / count * 1e6:.2f} µs each"


def measure_surveys(bench, archives):
    """The largest, on one thread and on two; and the memory of all."""
    largest = archives[-1]
    one, two = processes.medians([largest.survey("-j1"), largest.survey("-j2")], 1)
    bench.add(f"survey of an archive of {largest.count:,}, one thread", rate(largest.count, one),
              f"two threads {rate(largest.count, two)}", one / two)
    peaks = [processes.peak_memory(archive.survey("-j2")) for archive in archives]
    for archive, peak in zip(archives[1:], peaks[1:]):
        bench.add(f"survey of an archive of {archive.count:,}, memory", megabytes(peak),
                  f"of {archives[0].count:,} {megabytes(peaks[0])}", peak / max(peaks[0], 1), at_most=1.1)


def measure_processes(bench, archive, directory):
    """Beside a process for each of a few, from files: for all of them it would last too long."""
    few = min(FEW, archive.count)
    files = directory / "files"
    files.mkdir()
    for index, recording in enumerate(samples.unique_recordings(few)):
        (files / f"{index:04}.registry.plist").write_bytes(recording)
    replay = [bench.lab, "replay", "RECORDING", "-p", samples.EXAMPLES / "payload"]
    loop = ["/bin/sh", "-c", f"printf '%s\\0' {shell([files])}/* | "
            f"xargs -0 -P2 -I RECORDING {shell(replay)}"]
    ours, theirs = processes.medians([archive.survey("-j2"), loop], 1)
    bench.add(f"survey of an archive of {archive.count:,}, two threads", each(archive.count, ours),
              f"replays by xargs -P2, of {few:,} files {each(few, theirs)}",
              theirs / few / (ours / archive.count), at_least=5)


def measure_shards(bench, archive, directory):
    """Two tasks at once; and what a computer costs in each verb, in a merge and if it is of another
    shard."""
    results = [directory / f"{number}.ndjson" for number in (1, 2)]
    tasks = [archive.survey("-j1", "--shard", f"{number}/2") for number in (1, 2)]
    at_once = " & ".join(f"{shell(task)} > {shell([result])}" for task, result in zip(tasks, results))
    one, two = processes.medians([archive.survey("-j1"), ["/bin/sh", "-c", f"{at_once} & wait"]], 1)
    bench.add(f"survey of an archive of {archive.count:,}, one thread", rate(archive.count, one),
              f"two tasks at once {rate(archive.count, two)}", one / two)
    others = {
        "of another shard": archive.survey("-j1", "--shard", ALMOST_NONE),
        "merge of two shards": [bench.lab, "merge", "--format", "ndjson", *results],
        "coverage": archive.over("coverage", "-j1"),
        "settle": archive.over("settle", "--format", "ndjson", "-j1"),
    }
    survey, *taken = processes.medians([archive.survey("-j1"), *others.values()], 1,
                                       lambda spent: spent.cpu)
    for what, seconds in zip(others, taken):
        bench.add(f"a computer, {what}, processor time", each(archive.count, seconds),
                  f"survey {each(archive.count, survey)}", seconds / survey)


def measure_payloads(bench, directory, count):
    """Computers of one board, with few personalities and with many, which match none of them."""
    archive = Archive(bench.lab, directory / "board.tar.zst", count, samples.OF_BOARD)
    few, = processes.medians([archive.survey("-j1")], 1, lambda spent: spent.cpu)
    for personalities in (100, 1_000):
        archive.payload = directory / f"payload-{personalities}"
        samples.write_payload(archive.payload, personalities)
        many, = processes.medians([archive.survey("-j1")], 1, lambda spent: spent.cpu)
        bench.add(f"a computer, {personalities:,} personalities for its board, processor time",
                  each(count, many), f"those of the example {each(count, few)}", many / few)


def measure_report(bench, archive, directory):
    page = directory / "page.html"
    report = archive.over("report", "--force", "-o", page)
    ours, survey = processes.medians([report, archive.survey()], 1)
    bench.add(f"report of {archive.count:,}", milliseconds(ours), f"survey {milliseconds(survey)}",
              ours / survey)
    peaks = [processes.peak_memory(command) for command in (report, archive.survey())]
    bench.add(f"report of {archive.count:,}, memory", megabytes(peaks[0]),
              f"survey {megabytes(peaks[1])}", peaks[0] / max(peaks[1], 1))
    bench.add(f"report of {archive.count:,}, its page", megabytes(page.stat().st_size), "1 MB",
              page.stat().st_size / 1e6, at_most=2)
