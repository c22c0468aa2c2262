#!/usr/bin/env python3
"""Plays tarve-cli on a pseudo-terminal and reads its screen through a terminal emulator.

Usage: terminal_test.py TARVE_CLI GAMES_FOLDER CASE. Each case is one CTest test."""
import fcntl
import os
import pathlib
import pty
import select
import shutil
import struct
import subprocess
import sys
import tempfile
import termios
import time

import pyte

UP = "\x1b[A"
RESET = b"\x1b[0m\x1b7\x1b[r\x1b8"  # what tarve-cli leaves the terminal with when interrupted


class Session:
    def __init__(self, cli, game, cols=80, rows=24, args=(), home=None, term="xterm"):
        self.home = home or tempfile.mkdtemp(prefix="tarve-pty-")
        self.screen = pyte.Screen(cols, rows)
        self.stream = pyte.ByteStream(self.screen)
        self.raw = b""
        self.master, slave = pty.openpty()
        self.resize(cols, rows)
        env = {"PATH": os.environ.get("PATH", "/usr/bin:/bin"), "TERM": term,
               "HOME": self.home, "XDG_DATA_HOME": os.path.join(self.home, "data"),
               "XDG_CONFIG_HOME": os.path.join(self.home, "config")}
        self.process = subprocess.Popen(
            [cli, "--settings", os.path.join(self.home, "settings"), "--seed", "1", *args, game],
            stdin=slave, stdout=slave, stderr=slave, env=env, cwd=os.path.dirname(game),
            start_new_session=True, preexec_fn=lambda: fcntl.ioctl(0, termios.TIOCSCTTY, 0))
        os.close(slave)
        self.pump()

    def resize(self, cols, rows):
        self.screen.resize(rows, cols)
        fcntl.ioctl(self.master, termios.TIOCSWINSZ, struct.pack("HHHH", rows, cols, 0, 0))

    def pump(self, quiet=0.3, limit=10.0):
        """Waits for output, then reads it until the program has been quiet for `quiet` seconds
        (on a busy machine the first answer may take longer than that)."""
        end, wait = time.time() + limit, limit
        while time.time() < end and select.select([self.master], [], [], wait)[0]:
            try:
                data = os.read(self.master, 65536)
            except OSError:  # the program has left
                return
            if not data:
                return
            self.raw, wait = self.raw + data, quiet
            self.stream.feed(data)

    def type(self, keys):
        """Types the keys, "\\n" standing for Enter, and reads the answer."""
        os.write(self.master, keys.replace("\n", "\r").encode())
        self.pump()

    def lines(self):
        return [line.rstrip() for line in self.screen.display]

    def text(self):
        return "\n".join(self.lines())

    def check(self, condition, message):
        if not condition:
            print("FAILED: " + message + "\n--- screen ---\n" + self.text())
            self.close()
            sys.exit(1)

    def play(self, *steps):
        """Each step: keys to type (or none), then text the screen shows or a test of the session."""
        for keys, want, message in steps:
            if keys:
                self.type(keys)
            self.check(want in self.text() if isinstance(want, str) else want(self), message)

    def close(self, keep_home=False):
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
        if not keep_home:
            shutil.rmtree(self.home, ignore_errors=True)


count = lambda text, n: lambda s: s.text().count(text) == n
shown_line = lambda text: lambda s: text in s.lines()
top_line = lambda text: lambda s: s.lines()[0].strip() == text


def history_and_echo(cli, game):
    """A command shows once after its prompt; the arrows recall it, also in the next run."""
    s = Session(cli, game)
    s.play(("n\n", count("> n", 1), "the command is shown once"),
           ("", "Roses.", "the command ran"),
           ("xyzzy\n" + UP + UP + "\n", count("> n", 2), "Up twice recalls the first command"),
           ("look\x1b[H#\n", "There is no player command #look", "Home moves to the line's start"))
    s.close(keep_home=True)  # Ctrl-D, the end of the input, keeps the history
    again = Session(cli, game, home=s.home)
    again.play(("n\n" + UP + UP + "\n", count("> n", 1),  # n: the game left is not taken up
                "the history of the game is kept for the next run"),
               ("", "Roses.", "the history's command ran"),
               ("\x12xy\n", "> xyzzy", "Ctrl-R finds a command by a part of it"))
    again.close()


def wrapping(cli, game):
    """Lines break between words at 40 columns, and at the new width after a resize."""
    s = Session(cli, game, cols=40, args=["--no-status"])
    s.play(("", shown_line("A long hall with portraits of stern"), "wrapped at 40 columns"),
           ("", shown_line("ancestors along both walls, each"), "no word is cut"))
    s.resize(30, 24)
    s.play(("look\n", shown_line("A long hall with portraits of"), "wrapped at 30 after a resize"),
           ("", lambda s: all(len(line) <= 30 for line in s.lines()[-8:]), "no line wider than 30"))
    s.close()


def status_line(cli, game):
    """The top line shows the location and follows the player; --no-status leaves it out."""
    s = Session(cli, game)
    s.play(("", top_line("Hall"), "the status line shows the room"),
           ("n\n", top_line("Garden"), "the status line follows the player"),
           ("look\n" * 12, top_line("Garden"), "text scrolls below the status line"))
    s.close()
    plain = Session(cli, game, args=["--no-status"])
    plain.play(("", lambda s: s.lines()[0] == "You are in Hall." and b"\x1b[2;24r" not in s.raw,
                "no status line with --no-status"))
    plain.close()


def questions(cli, game):
    """Questions say what they take and ask again until they get it."""
    s = Session(cli, game, args=["--no-status"])
    s.play(("ask\n", "[Tarve] Are you sure\n(y/n)", "a yes/no question shows (y/n)"),
           ("maybe\n", count("(y/n)", 2), "an unclear answer asks again"),
           ("n\n", "Not sure.", "n answers no"),
           ("open door\n", "Type a number (1 to 2):", "a choice menu asks for a number"),
           ("9\nthree\n\n", count("Type a number (1 to 2):", 4), "only 1 or 2 is taken"),
           ("2\n", "Blue it is.", "the number picks its answer"))
    s.close()


def player_commands(cli, game):
    """#help lists the player's commands; #undo takes back a move and then has nothing left;
    #restart asks, then starts again; #save writes a saved game that #load reads back;
    #transcript appends to its file, stops and goes on."""
    s = Session(cli, game, args=["--no-status"])
    saved, transcript = (os.path.join(s.home, name) for name in ("hall.tsg", "play.txt"))
    pathlib.Path(transcript).write_text("Yesterday.\n")
    halls = lambda n: lambda s: s.raw.count(b"A long hall") == n
    s.play(("#help\n", lambda s: "#restart" in s.text() and "#transcript FILE|off" in s.text(),
            "#help lists them with their arguments"),
           ("n\n#undo\n", lambda s: "Undone: n" in s.text() and halls(2)(s), "#undo goes back"),
           ("#undo\n", "There is nothing to undo.", "one move, one undo"),
           ("n\n#restart\ny\n", lambda s: halls(3)(s) and b"(y/n)" in s.raw, "#restart asks, restarts"),
           (f"#save {saved}\n", lambda s: os.path.exists(saved), "#save writes the file"),
           (f"n\n#load {saved}\nlook\n", count("You are in Hall.", 2), "#load went back to the room"),
           (f"#save {game}\n", "is a game or a saved game", "the game's own file is never saved over"),
           (f"#transcript {transcript}\nn\n#transcript off\ns\n", "The transcript is off.",
            "#transcript off stops it"),
           (f"#transcript {transcript}\nask\ny\n", "Sure.", "the question was answered"))
    kept = pathlib.Path(transcript).read_text()
    s.check(kept.startswith("Yesterday.\n") and "> n\nYou are in Garden." in kept and
            "> #transcript off\n" in kept and "> s" not in kept and
            "[Tarve] Are you sure\n(y/n) y\nSure." in kept,
            "#transcript appends, stops and goes on, with the answers typed:\n" + kept)
    s.close()


def control_characters(cli, game):
    """A game's control characters never reach the terminal; Ctrl-C restores its state, also in
    a pause; TERM=dumb gets no escape sequences at all."""
    no_controls = lambda s: not any(c in s.raw for c in (b"\x07", b"]0;", b"\x1b[2J"))
    for steps in ((("ring\n", "Bell: ding.Still here!", "the text stays, its controls go"),
                   ("", no_controls, "no bell, title or screen clear was written")),
                  (("nap\n", "Alarm!", "the pause has begun"),)):
        s = Session(cli, game)
        s.play(*steps, ("\x03", lambda s: s.process.wait(timeout=10) is not None and
                        s.raw.endswith(RESET), "Ctrl-C resets styles and scrolling"),
               ("", lambda s: s.screen.cursor.attrs.fg == "default", "the terminal's colour is back"))
        s.close()
    dumb = Session(cli, game, term="dumb")
    dumb.play(("look\n", lambda s: b"\x1b" not in s.raw and "Hall" in s.text(),
               "TERM=dumb gets no styles"))
    dumb.close()


CASES = {f.__name__: f for f in
         (history_and_echo, wrapping, status_line, questions, player_commands, control_characters)}

if __name__ == "__main__":
    cli, games, case = sys.argv[1:4]
    CASES[case](os.path.abspath(cli), os.path.join(os.path.abspath(games), "screen.gwl"))
    print(case + ": passed")
