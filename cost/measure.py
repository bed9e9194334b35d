"""Measures one run of a command: its peak memory, its seconds and its output.

Started as a process of its own, it is small, so that the peak of the command that it starts is the
command's own: a process counts the memory of the one that started it.
"""

import json
import os
import resource
import subprocess
import sys
import tempfile

# No run takes longer, in seconds of processor time; one that would is a finding itself.
MAX_SECONDS = 100


def peak(words, standard_input, limit):
    """Runs the words with at most `limit` bytes of address space: how the process ended, its peak in
    bytes, its seconds and the bytes that it printed."""
    request = json.dumps({"words": [os.fspath(word) for word in words],
                          "input": os.fspath(standard_input or os.devnull), "limit": limit})
    done = subprocess.run([sys.executable, "-S", "-E", __file__], input=request, text=True,
                          stdout=subprocess.PIPE, check=True)
    return json.loads(done.stdout)


def _run(request):
    resource.setrlimit(resource.RLIMIT_CPU, (MAX_SECONDS, MAX_SECONDS))
    if request["limit"]:
        resource.setrlimit(resource.RLIMIT_AS, (request["limit"],) * 2)
    with tempfile.TemporaryFile() as output:
        actions = [(os.POSIX_SPAWN_OPEN, 0, request["input"], os.O_RDONLY, 0),
                   (os.POSIX_SPAWN_DUP2, output.fileno(), 1),
                   (os.POSIX_SPAWN_OPEN, 2, os.devnull, os.O_WRONLY, 0)]
        process = os.posix_spawn(request["words"][0], request["words"], os.environ,
                                 file_actions=actions)
        _, status, usage = os.wait4(process, 0)
        return {"status": os.waitstatus_to_exitcode(status), "peak": usage.ru_maxrss * 1024,
                "seconds": usage.ru_utime + usage.ru_stime,
                "printed": os.fstat(output.fileno()).st_size}


if __name__ == "__main__":
    print(json.dumps(_run(json.load(sys.stdin))))
