#!/usr/bin/env python3
"""Plays tarve-cli on a pseudo-terminal and reads its screen through a terminal emulator.

Usage: terminal_test.py TARVE_CLI GAMES_FOLDER CASE. Each case is one CTest test."""
import fcntl
import os
import pty
import select
import shutil
import signal
import struct
import subprocess
import sys
import tempfile
import termios
import time

import pyte

UP, ENTER = b"\x1b[A", b"\r"


class Session:
    def __init__(self, cli, game, cols=80, rows=24, args=(), home=None, term="xterm"):
        self.home = home or tempfile.mkdtemp(prefix="tarve-pty-")
        self.screen = pyte.Screen(cols, rows)
        self.stream = pyte.ByteStream(self.screen)
        self.raw = b""
        self.master, slave = pty.openpty()
        self.set_size(cols, rows)
        env = {"PATH": os.environ.get("PATH", "/usr/bin:/bin"), "TERM": term,
               "HOME": self.home, "XDG_DATA_HOME": os.path.join(self.home, "data"),
               "XDG_CONFIG_HOME": os.path.join(self.home, "config")}
        self.process = subprocess.Popen(
            [cli, "--settings", os.path.join(self.home, "settings"), "--seed", "1", *args, game],
            stdin=slave, stdout=slave, stderr=slave, env=env, cwd=os.path.dirname(game),
            start_new_session=True,
            preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
        os.close(slave)

    def set_size(self, cols, rows):
        fcntl.ioctl(self.master, termios.TIOCSWINSZ, struct.pack("HHHH", rows, cols, 0, 0))

    def resize(self, cols, rows):
        self.screen.resize(rows, cols)
        self.set_size(cols, rows)

    def pump(self, quiet=0.3, limit=10.0):
        """Waits for output, then reads it until the program has been quiet for `quiet` seconds
        (on a busy machine the first answer may take longer than that)."""
        end = time.time() + limit
        got = False
        while time.time() < end:
            wait = quiet if got else max(0.0, end - time.time())
            ready, _, _ = select.select([self.master], [], [], wait)
            if not ready:
                return
            got = True
            try:
                data = os.read(self.master, 65536)
            except OSError:
                return
            if not data:
                return
            self.raw += data
            self.stream.feed(data)

    def type(self, keys):
        os.write(self.master, keys)
        self.pump()

    def lines(self):
        return [line.rstrip() for line in self.screen.display]

    def text(self):
        return "\n".join(self.lines())

    def close(self):
        if self.process.poll() is None:
            # The end of the input lets the program leave as it does for a player, so that what
            # it ran is counted by a coverage build; a program that does not leave is killed.
            try:
                os.write(self.master, b"\x04")
                self.process.wait(timeout=5)
            except (OSError, subprocess.TimeoutExpired):
                self.process.kill()
        self.process.wait()
        os.close(self.master)
        shutil.rmtree(self.home, ignore_errors=True)


def check(condition, message, session):
    if not condition:
        print("FAILED: " + message + "\n--- screen ---\n" + session.text())
        session.close()
        sys.exit(1)


def history_and_echo(cli, game):
    """A command shows once after its prompt; the arrows recall it, also in the next run."""
    s = Session(cli, game)
    s.pump()
    s.type(b"n" + ENTER)
    check(s.text().count("> n") == 1, "the command is shown once", s)
    check("Roses." in s.text(), "the command ran", s)
    s.type(b"xyzzy" + ENTER + UP + UP + ENTER)
    check(s.text().count("> n") == 2, "Up twice recalls the first command", s)
    s.type(b"look" + b"\x1b[H" + b"#" + ENTER)  # Home, then a player command prefix
    check("There is no player command #look" in s.text(), "Home moves to the line's start", s)
    s.type(b"\x04")  # Ctrl-D: the end of the input
    s.process.wait(timeout=10)
    home = s.home
    s.home = tempfile.mkdtemp()
    s.close()
    again = Session(cli, game, home=home)
    again.pump()
    again.type(b"n" + ENTER)  # the game left at Ctrl-D is offered again: start afresh
    again.type(UP + UP + ENTER)
    check(again.text().count("> n") == 1 and "Roses." in again.text(),
          "the history of the game is kept for the next run", again)
    again.type(b"\x12xy" + ENTER)  # Ctrl-R searches back in the history
    check("> xyzzy" in again.text(), "Ctrl-R finds a command by a part of it", again)
    again.close()


def wrapping(cli, game):
    """Lines break between words at 40 columns, and at the new width after a resize."""
    s = Session(cli, game, cols=40, args=["--no-status"])
    s.pump()
    lines = [line for line in s.lines() if line]
    check("A long hall with portraits of stern" in lines, "wrapped at 40 columns", s)
    check("ancestors along both walls, each" in lines, "no word is cut", s)
    s.resize(30, 24)
    s.type(b"look" + ENTER)
    check("A long hall with portraits of" in s.lines(), "wrapped at 30 after a resize", s)
    check(all(len(line) <= 30 for line in s.lines()[-8:]), "no line wider than 30", s)
    s.close()


def status_line(cli, game):
    """The top line shows the location and follows the player; --no-status leaves it out."""
    s = Session(cli, game)
    s.pump()
    check(s.lines()[0].strip() == "Hall", "the status line shows the room", s)
    s.type(b"n" + ENTER)
    check(s.lines()[0].strip() == "Garden", "the status line follows the player", s)
    for _ in range(12):
        s.type(b"look" + ENTER)
    check(s.lines()[0].strip() == "Garden", "text scrolls below the status line", s)
    s.close()
    plain = Session(cli, game, args=["--no-status"])
    plain.pump()
    check(plain.lines()[0] == "You are in Hall." and b"\x1b[2;24r" not in plain.raw,
          "no status line with --no-status", plain)
    plain.close()


def questions(cli, game):
    """Questions say what they take and ask again until they get it."""
    s = Session(cli, game, args=["--no-status"])
    s.pump()
    s.type(b"ask" + ENTER)
    check("[Tarve] Are you sure\n(y/n)" in s.text(), "a yes/no question shows (y/n)", s)
    s.type(b"maybe" + ENTER)
    check(s.text().count("(y/n)") == 2, "an unclear answer asks again", s)
    s.type(b"n" + ENTER)
    check("Not sure." in s.text(), "n answers no", s)
    s.type(b"open door" + ENTER)
    check("Type a number (1 to 2):" in s.text(), "a choice menu asks for a number", s)
    s.type(b"9" + ENTER + b"three" + ENTER + ENTER)
    check(s.text().count("Type a number (1 to 2):") == 4, "only 1 or 2 is taken", s)
    s.type(b"2" + ENTER)
    check("Blue it is." in s.text(), "the number picks its answer", s)
    s.close()


def player_commands(cli, game):
    """#help lists the player's commands; #undo takes back a move and then has nothing left;
    #restart asks, then starts again; #save writes a saved game that #load reads back."""
    s = Session(cli, game, args=["--no-status"])
    s.pump()
    s.type(b"#help" + ENTER)
    check("#restart" in s.text() and "#transcript FILE|off" in s.text(), "#help lists them", s)
    s.type(b"n" + ENTER + b"#undo" + ENTER)
    check("Undone: n" in s.text() and s.raw.count(b"A long hall") == 2, "#undo goes back", s)
    s.type(b"#undo" + ENTER)
    check("There is nothing to undo." in s.text(), "one move, one undo", s)
    s.type(b"n" + ENTER + b"#restart" + ENTER + b"y" + ENTER)
    check(s.raw.count(b"A long hall") == 3 and b"(y/n)" in s.raw, "#restart asks, restarts", s)
    saved = os.path.join(s.home, "hall.tsg")
    s.type(b"#save " + saved.encode() + ENTER)
    check(os.path.exists(saved), "#save writes the file", s)
    s.type(b"n" + ENTER + b"#load " + saved.encode() + ENTER)
    s.type(b"look" + ENTER)
    check(s.text().count("You are in Hall.") == 2, "#load went back to the saved room", s)
    s.type(b"#save " + game.encode() + ENTER)
    check("is a game or a saved game" in s.text(), "the game's own file is never saved over", s)
    transcript = os.path.join(s.home, "play.txt")
    with open(transcript, "w") as f:
        f.write("Yesterday.\n")
    s.type(b"#transcript " + transcript.encode() + ENTER + b"n" + ENTER)
    s.type(b"#transcript off" + ENTER + b"s" + ENTER)
    s.type(b"#transcript " + transcript.encode() + ENTER + b"ask" + ENTER + b"y" + ENTER)
    with open(transcript) as f:
        kept = f.read()
    check(kept.startswith("Yesterday.\n") and "> n\nYou are in Garden." in kept and
          "> #transcript off\n" in kept and "> s" not in kept and
          "[Tarve] Are you sure\n(y/n) y\nSure." in kept,
          "#transcript appends, stops and goes on, with the answers typed:\n" + kept, s)
    s.close()


def control_characters(cli, game):
    """A game's control characters never reach the terminal; Ctrl-C restores its state."""
    s = Session(cli, game)
    s.pump()
    s.type(b"ring" + ENTER)
    check("Bell: ding.Still here!" in s.text(), "the text stays, its controls go", s)
    check(b"\x07" not in s.raw and b"]0;" not in s.raw and b"\x1b[2J" not in s.raw,
          "no bell, title or screen clear was written", s)
    s.type(b"\x03")
    s.process.wait(timeout=10)
    check(s.raw.endswith(b"\x1b[0m\x1b7\x1b[r\x1b8"), "Ctrl-C resets styles and scrolling", s)
    s.close()
    napping = Session(cli, game)
    napping.pump()
    napping.type(b"nap" + ENTER)
    check("Alarm!" in napping.text(), "the pause has begun", napping)
    napping.type(b"\x03")
    napping.process.wait(timeout=10)
    check(napping.raw.endswith(b"\x1b[0m\x1b7\x1b[r\x1b8"), "Ctrl-C in a pause too", napping)
    check(napping.screen.cursor.attrs.fg == "default", "the terminal's own colour is back", napping)
    napping.close()
    dumb = Session(cli, game, term="dumb")
    dumb.pump()
    dumb.type(b"look" + ENTER)
    check(b"\x1b" not in dumb.raw and "Hall" in dumb.text(), "TERM=dumb gets no styles", dumb)
    dumb.close()


CASES = {f.__name__: f for f in
         (history_and_echo, wrapping, status_line, questions, player_commands, control_characters)}

if __name__ == "__main__":
    cli, games, case = sys.argv[1:4]
    CASES[case](os.path.abspath(cli), os.path.join(os.path.abspath(games), "screen.gwl"))
    print(case + ": passed")
