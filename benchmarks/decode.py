#!/usr/bin/env python3
"""decode.py: sound files become a CD's samples, side by side with sox doing the same conversion.

    benchmarks/decode.py [--rounds 7] [--seconds 240] [--build DIR] [--kinds wav,flac,mp3,ogg]

The sound is noise of two channels and 16 bits at 48,000 samples a second, the same at every run. Ours is decode-bench, which
does what a burn does: opens and measures the file three times (when the program makes the track, when the burn begins, and
when the track is prepared), resamples at libsoxr's high quality and rounds with dither. sox is asked for 44,100 samples a second, 16 bits and 2 channels, which
makes it resample at its own default, `rate -h`, and dither, too. Whole processes by turns; quoted are the shortest wall time
of each and the least processor time. Needs sox with its formats, flac, lame and ffmpeg (tools/setup --tests).
"""
import argparse
import os
import shutil
import subprocess
import sys
import tempfile
import time

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
AIM = 1.2


def make_sounds(folder, seconds, kinds):
    wav = os.path.join(folder, "sound.wav")
    made = {kind: os.path.join(folder, "sound." + kind) for kind in kinds}
    commands = {
        "wav": ["sox", "-R", "-n", "-r", "48000", "-b", "16", "-c", "2", wav, "synth", str(seconds), "pinknoise",
                "vol", "0.3"],
        "flac": ["flac", "--silent", wav, "-o", made.get("flac", "")],
        "mp3": ["lame", "--quiet", "-b", "192", wav, made.get("mp3", "")],
        "ogg": ["ffmpeg", "-v", "error", "-i", wav, "-c:a", "libvorbis", made.get("ogg", "")],
    }
    for kind in ["wav"] + [kind for kind in kinds if kind != "wav"]:
        subprocess.run(commands[kind], check=True)
    return made


def run(command):
    """Wall and processor seconds of one run."""
    start = time.perf_counter()
    process = subprocess.Popen(command)
    _, status, used = os.wait4(process.pid, 0)
    wall = time.perf_counter() - start
    process.returncode = os.waitstatus_to_exitcode(status)
    if process.returncode:
        sys.exit(f"{' '.join(command)}\nended with {process.returncode}")
    return wall, used.ru_utime + used.ru_stime


def main():
    options = argparse.ArgumentParser(description=__doc__.splitlines()[0])
    options.add_argument("--rounds", type=int, default=7)
    options.add_argument("--seconds", type=int, default=240)
    options.add_argument("--build", default=os.path.join(ROOT, "build/release"),
                         help="where decode-bench was built (default: build/release)")
    options.add_argument("--kinds", default="wav,flac,mp3,ogg")
    options = options.parse_args()
    ours = os.path.join(options.build, "bin/decode-bench")
    for program in ("sox", "flac", "lame", "ffmpeg"):
        if not shutil.which(program):
            sys.exit(f"decode.py: {program} is missing; install it with tools/setup --tests")
    if not os.path.exists(ours):
        sys.exit(f"decode.py: build first: ninja -C {options.build} decode-bench")
    missed = []
    with tempfile.TemporaryDirectory(prefix="disc-decode-") as folder:
        out = os.path.join(folder, "out.wav")
        print(f"{'':6}{'ours':>16}{'sox':>16}{'ratio':>14}   (wall, processor; aim {AIM})")
        for kind, sound in make_sounds(folder, options.seconds, options.kinds.split(",")).items():
            commands = {"ours": [ours, sound, out], "sox": ["sox", sound, "-b", "16", "-r", "44100", "-c", "2", out]}
            times = {name: [] for name in commands}
            for _ in range(options.rounds):
                for name, command in commands.items():
                    times[name].append(run(command))
            wall, processor = ({name: min(each[which] for each in rounds) for name, rounds in times.items()}
                               for which in (0, 1))
            ratio = wall["ours"] / wall["sox"]
            if ratio > AIM:
                missed.append(kind)
            print(f"{kind:6}{wall['ours']:9.3f}{processor['ours']:7.3f}{wall['sox']:9.3f}{processor['sox']:7.3f}"
                  f"{ratio:7.2f}{processor['ours'] / processor['sox']:7.2f}{'  MISSED' if kind in missed else ''}", flush=True)
    sys.exit(1 if missed else 0)


if __name__ == "__main__":
    main()
