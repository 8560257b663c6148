"""The environment of a measurement: the built programs, a web server in place of the camera, the
simulated modules, and the network between them. What a `with` block starts ends with the block."""

import contextlib
import json
import os
import pathlib
import select
import shutil
import subprocess
import tempfile
import time

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILT = ROOT / "build/bench/bin"
CAMERA = "http://192.168.1.120"
RECORDINGS = "/sd/DCIM/100ZEPNA/"
LONGEST = 170  # seconds for one run of one program

NGINX = """
daemon off;
master_process off;
pid nginx.pid;
error_log stderr;
events {{}}
http {{
    access_log off;
    client_body_temp_path body;
    proxy_temp_path proxy;
    fastcgi_temp_path fastcgi;
    uwsgi_temp_path uwsgi;
    scgi_temp_path scgi;
    sendfile on;
    default_type application/octet-stream;
    server {{
        listen 192.168.1.120:80;
        root "{folder}/www";
        {limit}
        location = /cgi-bin/hi3510/getfilecount.cgi {{ return 200 'var count="{count}";\\r\\n'; }}
        location = /cgi-bin/hi3510/getfilelist.cgi {{ return 200 '{names}\\r\\n'; }}
        location = /cgi-bin/hi3510/getfileinfo.cgi {{
            return 200 'var create="20260131124502";\\r\\nvar size="1";\\r\\nvar time="37";\\r\\n';
        }}
    }}
}}
"""


class Failed(Exception):
    """A program failed, or a file has the wrong size."""


def folder_in_memory():
    """Returns a temporary folder, in memory if /dev/shm is writable."""
    shared = "/dev/shm"
    return tempfile.TemporaryDirectory(prefix="belun-bench-",
                                       dir=shared if os.access(shared, os.W_OK) else None)


def run(command, **environment):
    """Runs a program. Returns its output, the time of its start and its duration in seconds."""
    start = time.monotonic()
    process = subprocess.Popen([str(word) for word in command], stdout=subprocess.PIPE,
                               stderr=subprocess.PIPE, env={**os.environ, **environment},
                               close_fds=False)
    try:
        output, errors = process.communicate(timeout=LONGEST)
    except subprocess.TimeoutExpired:
        process.kill()
        process.wait()
        raise Failed(f"{command[0]} took more than {LONGEST} s") from None
    if process.returncode != 0:
        raise Failed(f"{' '.join(map(str, command))}: status {process.returncode}\n"
                     f"{errors.decode(errors='replace')[-2000:]}")
    return {"begin": start, "seconds": time.monotonic() - start, "output": output.decode()}


def driver(name, *arguments, **environment):
    """Runs one of the built drivers and returns its reports."""
    output = run([BUILT / name, *arguments], **environment)["output"]
    return [json.loads(line) for line in output.splitlines() if line.startswith("{")]


def usage_of(command, **environment):
    """Runs a program that does not report its time and memory itself, and returns both."""
    return driver("bench_usage", *command, **environment)[0]


@contextlib.contextmanager
def started(command, ready, **options):
    """Runs a program until the block ends; `ready(process)` waits until the program can be used."""
    process = subprocess.Popen([str(word) for word in command], stdin=subprocess.PIPE,
                               stderr=subprocess.DEVNULL, **options)
    try:
        ready(process)
        yield process
    finally:
        process.stdin.close()
        process.terminate()
        try:
            process.wait(10)
        except subprocess.TimeoutExpired:
            process.kill()
            process.wait()


def nginx_program():
    path = os.environ["PATH"] + ":/usr/sbin:/sbin"
    return shutil.which("nginx", path=path)


@contextlib.contextmanager
def camera(sizes, bytes_per_second=0):
    """Runs nginx as a camera whose card has recordings of these sizes in megabytes. Yields nginx's
    folder and process."""
    with folder_in_memory() as folder:
        card = pathlib.Path(folder, "www" + RECORDINGS)
        card.mkdir(parents=True)
        names = []
        for number, megabytes in enumerate(sizes):
            names.append(f"REC{number:05}.MP4")
            with open(card / names[-1], "wb") as file:
                block = os.urandom(1 << 20)
                for _ in range(max(1, int(megabytes))):
                    file.write(block if megabytes >= 1 else block[:int(megabytes * (1 << 20))])
        listed = "".join(f"sd/DCIM/100ZEPNA/{name};" for name in names)
        limit = f"limit_rate {bytes_per_second};" if bytes_per_second else ""
        pathlib.Path(folder, "configuration").write_text(NGINX.format(
            folder=folder, count=len(names), names=listed, limit=limit), encoding="ascii")

        def ready(process):
            for _ in range(500):
                if subprocess.run(["curl", "-s", "-o", os.devnull, CAMERA + RECORDINGS],
                                  check=False).returncode == 0:
                    return
                if process.poll() is not None:
                    break
                time.sleep(0.02)
            raise Failed("nginx does not run")

        command = [nginx_program(), "-e", "stderr", "-p", folder,
                   "-c", folder + "/configuration"]
        with started(command, ready, stdout=subprocess.DEVNULL) as process:
            yield pathlib.Path(folder), process


@contextlib.contextmanager
def vehicle(*options):
    """Runs the simulated vehicle. Yields its process."""
    def ready(process):
        readable, _, _ = select.select([process.stdout], [], [], 20)
        if not readable or process.stdout.readline() != b"belun-simulator ready\n":
            raise Failed("the simulator does not run")

    command = [BUILT / "belun-simulator", "--exit-with-stdin", *options]
    with started(command, ready, stdout=subprocess.PIPE) as process:
        yield process


def modules():
    """Runs the simulated modules without the camera, so that another program can take its place."""
    return vehicle("--fault", "refuse=camera")


@contextlib.contextmanager
def shaped(bits_per_second):
    """Limits the network's rate with a token bucket on the loopback interface; a rate of 0 means no
    limit. Yields False if the system does not allow this."""
    if not bits_per_second:
        yield True
        return
    rate = f"{bits_per_second}bit"
    burst = max(131_072, bits_per_second // 2000)
    made = subprocess.run(["tc", "qdisc", "add", "dev", "lo", "root", "tbf", "rate", rate,
                           "burst", str(burst), "limit", "16mb"], check=False,
                          capture_output=True).returncode == 0
    try:
        yield made
    finally:
        if made:
            subprocess.run(["tc", "qdisc", "del", "dev", "lo", "root"], check=True)


@contextlib.contextmanager
def home():
    """Creates a home folder with a desktop, in memory if possible. Yields the home folder and the
    folder for recordings."""
    with folder_in_memory() as folder:
        recordings = pathlib.Path(folder, "Desktop/DCIM")
        recordings.mkdir(parents=True)
        yield pathlib.Path(folder), recordings
