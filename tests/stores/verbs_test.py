#!/usr/bin/env python3
"""The settings, queue, history, key, pronunciations and report verbs through the real binary.

  verbs_test.py LECTORBELL FEEDBACK_SERVER [unittest arguments, e.g. -k Keyring]

Each test runs the binary with HOME and the XDG folders in a fresh temporary folder. The Keyring
tests need a Secret Service (run them under scripts/with-keyring); NoKeyring tests need none.
"""
import json
import os
import pathlib
import socket
import subprocess
import sys
import tempfile
import unittest
import urllib.request

LECTORBELL = None
FEEDBACK_SERVER = None


class Home:
    """A private HOME with its XDG folders."""

    def __init__(self):
        self._dir = tempfile.TemporaryDirectory(prefix="lectorbell-verbs.")
        self.root = pathlib.Path(self._dir.name)
        self.config = self.root / ".config"
        self.data = self.root / ".local" / "share"
        self.env = dict(os.environ, HOME=str(self.root), XDG_CONFIG_HOME=str(self.config),
                        XDG_DATA_HOME=str(self.data), LECTORBELL_FEEDBACK_URL="")

    def run(self, *args, stdin=b"", env=None, timeout=60):
        return subprocess.run([LECTORBELL, *args], input=stdin, capture_output=True,
                              env=dict(self.env, **(env or {})), timeout=timeout)

    def ok(self, *args, **kwargs):
        result = self.run(*args, **kwargs)
        if result.returncode != 0:
            raise AssertionError("%s: exit %d\n%s" % (args, result.returncode,
                                                      result.stderr.decode()))
        return result.stdout.decode()

    def cleanup(self):
        self._dir.cleanup()


def ini_string(text):
    """A value as QSettings writes a string holding commas and quotes."""
    return '"' + text.replace("\\", "\\\\").replace('"', '\\"') + '"'


class VerbTest(unittest.TestCase):
    def setUp(self):
        self.home = Home()
        self.addCleanup(self.home.cleanup)

    def assertRefused(self, result, *words):
        """Bad input: exit 2 and one line on standard error that says what is wrong."""
        self.assertEqual(result.returncode, 2, result.stderr)
        lines = result.stderr.decode().strip().splitlines()
        self.assertEqual(len(lines), 1, lines)
        for word in words:
            self.assertIn(word, lines[0])


class Settings(VerbTest):
    def test_fresh_settings_are_all_defaults(self):
        listing = json.loads(self.home.ok("settings"))
        self.assertEqual(len(listing), 31)
        # Only the mark that the one-time carry-over has run differs from a fresh install.
        changed = [key for key, entry in listing.items() if not entry["default"]]
        self.assertEqual(changed, ["migratedFromMurmurbench"])
        self.assertEqual(listing["holdKey"]["value"],
                         {"keyCode": 50, "modifiers": 0, "display": "` (key below Esc)"})
        self.assertEqual(listing["saveHotkey"]["value"]["display"], "Ctrl+Alt+S")
        self.assertEqual(listing["elevenModel"]["value"], "eleven_v4_turbo")
        self.assertIsNone(listing["stopHotkey"]["value"])
        self.assertIn("devLogExcerpts", listing)

    def test_get_set_reset(self):
        self.assertEqual(self.home.ok("settings", "get", "pace"), "normal\n")
        self.assertEqual(self.home.ok("settings", "get", "instantStart"), "true\n")
        self.assertEqual(self.home.ok("settings", "get", "voiceIdentifier"), "")
        self.home.ok("settings", "set", "pace", "veryFast")
        self.home.ok("settings", "set", "exclusions", '["org.keepassxc.KeePassXC"]')
        self.home.ok("settings", "set", "stopHotkey",
                     '{"keyCode":35,"modifiers":6144,"display":"Ctrl+Alt+P"}')
        self.assertEqual(self.home.ok("settings", "get", "pace"), "veryFast\n")
        self.assertEqual(self.home.ok("settings", "get", "exclusions"),
                         '["org.keepassxc.KeePassXC"]\n')
        listing = json.loads(self.home.ok("settings"))
        self.assertFalse(listing["pace"]["default"])
        self.assertFalse(listing["stopHotkey"]["default"])
        self.home.ok("settings", "reset", "pace")
        self.assertEqual(self.home.ok("settings", "get", "pace"), "normal\n")

    def test_invalid_values_are_refused_and_not_stored(self):
        cases = [
            ("pace", "quick", "one of slow, normal"),
            ("showPlayerPanel", "yes", "true or false"),
            ("readHotkey", '{"keyCode":15}', "keyCode"),
            ("exclusions", "org.gnome.TextEditor", "JSON array of strings"),
            ("appVoices",
             '[{"bundleID":"a","appName":"A","voice":{"apple":{"_0":"x"},"eleven":{}}}]',
             "Invalid number of keys found, expected one."),
            ("pronunciations", '[{"word":"a","sayAs":"b"}]', '"id"'),
            ("sharedPronunciationsAt", "yesterday", "UTC time"),
        ]
        for key, value, expected in cases:
            with self.subTest(key=key):
                self.assertRefused(self.home.run("settings", "set", key, value), key, expected)
        conf_file = self.home.config / "lectorbell" / "lectorbell.conf"
        conf = conf_file.read_text() if conf_file.exists() else ""
        for key, _, _ in cases:
            self.assertNotIn(key + "=", conf)
        self.assertRefused(self.home.run("settings", "get", "noSuchKey"), "noSuchKey")
        self.assertRefused(self.home.run("settings", "set", "pace"), "pace")

    def test_a_garbage_settings_file_reads_as_defaults_and_is_kept(self):
        folder = self.home.config / "lectorbell"
        folder.mkdir(parents=True)
        garbage = b"\x00\xff[General\npace=sideways\nreadHotkey={{{\nno equals sign here\n"
        (folder / "lectorbell.conf").write_bytes(garbage)
        listing = json.loads(self.home.ok("settings"))
        self.assertEqual(listing["pace"]["value"], "normal")
        self.assertEqual(listing["readHotkey"]["value"]["display"], "Shift+Super+R")
        copies = list(folder.glob("lectorbell.conf.unreadable-*"))
        self.assertEqual(len(copies), 1)
        self.assertEqual(copies[0].read_bytes(), garbage)

    def test_the_earlier_build_is_carried_over_once(self):
        former = self.home.config / "murmurbench"
        former.mkdir(parents=True)
        (former / "murmurbench.conf").write_text(
            "[General]\npace=fast\nstartAtLoginChosen=true\nsetupDone=true\n")
        old_data = self.home.data / "Murmurbench"
        old_data.mkdir(parents=True)
        (old_data / "queue.json").write_text(
            '[{"date":"2026-03-07T10:00:00Z","appName":"Writer","text":"kept","listened":false}]')

        self.assertEqual(self.home.ok("settings", "get", "pace"), "fast\n")
        self.assertEqual(self.home.ok("settings", "get", "reRegisterLoginItem"), "true\n")
        self.assertEqual(self.home.ok("settings", "get", "migratedFromMurmurbench"), "true\n")
        self.assertEqual([item["text"] for item in json.loads(self.home.ok("queue", "--json"))],
                         ["kept"])
        self.assertFalse(old_data.exists())

        (former / "murmurbench.conf").write_text("[General]\npace=slow\nshowPlayerPanel=true\n")
        self.assertEqual(self.home.ok("settings", "get", "pace"), "fast\n")
        self.assertEqual(self.home.ok("settings", "get", "showPlayerPanel"), "false\n")


class Queue(VerbTest):
    def queue(self):
        return json.loads(self.home.ok("queue", "--json"))

    def test_add_list_remove_clear(self):
        self.assertEqual(self.home.ok("queue"), "The queue is empty.\n")
        self.home.ok("queue", "add", stdin="First highlight.".encode())
        self.home.ok("queue", "add", "-", stdin="Second highlight.".encode())
        path = self.home.root / "third.txt"
        path.write_text("First highlight.")
        self.home.ok("queue", "add", str(path))
        items = self.queue()
        self.assertEqual([item["text"] for item in items],
                         ["Second highlight.", "First highlight."])
        self.assertEqual({item["appName"] for item in items}, {"Command line"})
        self.assertEqual([item["index"] for item in items], [1, 2])
        queue_file = self.home.data / "Lectorbell" / "queue.json"
        self.assertEqual(queue_file.stat().st_mode & 0o777, 0o600)

        self.assertRefused(self.home.run("queue", "remove", "3"), "no item 3")
        self.assertRefused(self.home.run("queue", "remove", "first"), "number")
        self.assertRefused(self.home.run("queue", "add", stdin=b" \n\t"), "no text")
        self.home.ok("queue", "remove", "1")
        self.assertEqual([item["text"] for item in self.queue()], ["First highlight."])

        data = json.loads(queue_file.read_text())
        data[0]["listened"] = True
        queue_file.write_text(json.dumps(data))
        self.assertIn("listened", self.home.ok("queue"))
        self.home.ok("queue", "clear-listened")
        self.assertEqual(self.queue(), [])

    def test_invalid_utf8_is_replaced(self):
        result = self.home.run("queue", "add", stdin=b"caf\xe9 au lait")
        self.assertEqual(result.returncode, 0)
        self.assertIn(b"not valid UTF-8", result.stderr)
        self.assertEqual(self.queue()[0]["text"], "caf\ufffd au lait")

    def test_an_undecodable_queue_is_kept_aside(self):
        folder = self.home.data / "Lectorbell"
        folder.mkdir(parents=True)
        garbage = b"\xff" * (50 * 1024 * 1024)
        (folder / "queue.json").write_bytes(garbage)
        result = self.home.run("queue")
        self.assertEqual(result.stdout, b"The queue is empty.\n")
        self.assertEqual(result.stderr.count(b"\n"), 1)
        self.assertIn(b"kept aside as queue.json.corrupt-", result.stderr)
        self.home.ok("queue", "add", stdin=b"after")
        aside = list(folder.glob("queue.json.corrupt-*"))
        self.assertEqual(len(aside), 1)
        self.assertEqual(aside[0].stat().st_size, len(garbage))


class History(VerbTest):
    def test_history_shows_totals_days_and_entries_without_text(self):
        self.assertIsNone(json.loads(self.home.ok("history", "--json"))["averageWPM"])
        folder = self.home.config / "lectorbell"
        stats = {"totalWords": 300, "totalSeconds": 90.0, "dailyWords": {"2020-01-01": 300}}
        recent = [{"date": "2020-01-01T10:00:00.000Z", "appName": "Firefox", "words": 300,
                   "seconds": 90.0, "wasSelection": True, "bundleID": "firefox"}]
        (folder / "lectorbell.conf").write_text(
            "[General]\nlisteningStats=%s\nrecentListening=%s\n"
            % (ini_string(json.dumps(stats)), ini_string(json.dumps(recent))))
        history = json.loads(self.home.ok("history", "--json"))
        self.assertEqual(history["totalWords"], 300)
        self.assertEqual(history["averageWPM"], 200)
        self.assertEqual(len(history["days"]), 14)
        self.assertEqual(history["streak"], 0)
        self.assertEqual(history["recent"][0]["appName"], "Firefox")
        self.assertEqual(set(history["recent"][0]),
                         {"date", "appName", "bundleID", "words", "seconds", "wasSelection"})
        self.assertIn("200 words per minute", self.home.ok("history"))


class FeedbackServer:
    def __init__(self):
        self.process = subprocess.Popen([sys.executable, FEEDBACK_SERVER, "120"],
                                        stdout=subprocess.PIPE)
        self.port = int(self.process.stdout.readline())

    def url(self, scenario):
        return "http://127.0.0.1:%d/%s/" % (self.port, scenario)

    def received(self, scenario):
        with urllib.request.urlopen("http://127.0.0.1:%d/_received" % self.port) as reply:
            return [r for r in json.load(reply) if r["path"].startswith("/%s/" % scenario)]

    def stop(self):
        self.process.kill()
        self.process.wait()
        self.process.stdout.close()


class Online(VerbTest):
    def setUp(self):
        super().setUp()
        self.server = FeedbackServer()
        self.addCleanup(self.server.stop)

    def test_report_messages(self):
        closed = socket.socket()
        closed.bind(("127.0.0.1", 0))
        closed_url = "http://127.0.0.1:%d/" % closed.getsockname()[1]
        closed.close()
        cases = [(self.server.url("status-200"), 0,
                  "Thanks. Reports like this make reading better for everyone."),
                 (self.server.url("status-429"), 1,
                  "That's a lot of reports today. Try again tomorrow."),
                 (closed_url, 1, "Couldn't reach the server. Try again later."),
                 ("", 1, "Reports aren't available yet.")]
        for url, status, message in cases:
            with self.subTest(url=url):
                result = self.home.run("report", "--problem", "skipped-text", "--note", "n",
                                       env={"LECTORBELL_FEEDBACK_URL": url})
                self.assertEqual(result.returncode, status)
                self.assertIn(message, (result.stdout + result.stderr).decode())
        body = json.loads(self.server.received("status-200")[0]["body"])
        self.assertEqual(body["problem"], "skipped-text")
        self.assertEqual(body["mode"], "mouse")
        self.assertEqual(body["origin"], "command line")
        self.assertEqual(body["note"], "n")
        self.assertEqual(body["install"],
                         self.home.ok("settings", "get", "feedbackInstallID").strip())
        self.assertRefused(self.home.run("report", "--problem", "boring"), "--problem")

    def test_pronunciations(self):
        self.assertIn("Added SQL → sequel", self.home.ok("pronunciations", "add", "SQL", "sequel"))
        self.assertIn("Replaced", self.home.ok("pronunciations", "add", "sql", "S Q L"))
        self.assertRefused(self.home.run("pronunciations", "add", "GIF", "a GIF file"),
                           "contains the word again")
        rules = self.home.root / "rules.json"
        rules.write_text(json.dumps([{"word": "nginx", "sayAs": "engine x"},
                                     {"word": "SQL", "sayAs": "sequel"},
                                     {"word": "", "sayAs": "nothing"},
                                     {"word": "kubectl"}]))
        out = self.home.ok("pronunciations", "import", str(rules))
        self.assertIn("Added 1, replaced 1, refused 2.", out)
        self.assertIn("rule 3: the word is empty", out)
        self.assertIn("rule 4:", out)
        exported = json.loads(self.home.ok("pronunciations", "export"))
        self.assertEqual([(r["word"], r["sayAs"]) for r in exported],
                         [("SQL", "sequel"), ("nginx", "engine x")])
        self.home.ok("pronunciations", "remove", "NGINX")
        self.assertEqual(self.home.ok("pronunciations", "list"), "SQL → sequel\n")
        self.assertRefused(self.home.run("pronunciations", "import", "/nonexistent.json"),
                           "cannot read")

        # Sharing sends new fixes to the server; shared fixes come back from it.
        online = {"LECTORBELL_FEEDBACK_URL": self.server.url("rules-6000")}
        self.home.ok("settings", "set", "sharePronunciations", "true")
        self.home.ok("pronunciations", "add", "kubectl", "cube control", env=online)
        shared = self.server.received("rules-6000")
        self.assertEqual(json.loads(shared[0]["body"])["word"], "kubectl")
        self.assertIn("Fetched 5000 shared fixes.",
                      self.home.ok("pronunciations", "refresh-shared", env=online))
        self.assertIn("less than a day ago",
                      self.home.ok("pronunciations", "refresh-shared", env=online))
        self.assertIn("Fetched 5000",
                      self.home.ok("pronunciations", "refresh-shared", "--force", env=online))
        self.assertEqual(len(self.server.received("rules-6000")), 3)
        broken = {"LECTORBELL_FEEDBACK_URL": self.server.url("invalid")}
        result = self.home.run("pronunciations", "refresh-shared", "--force", env=broken)
        self.assertEqual(result.returncode, 1)
        listed = self.home.ok("pronunciations", "list", "--shared", "--json")
        self.assertEqual(len(json.loads(listed)), 5000)


class Keyring(VerbTest):
    """Run under scripts/with-keyring: a real Secret Service."""

    def test_set_status_delete(self):
        self.assertIn("No ElevenLabs key", self.home.ok("key", "status"))
        key = b"sk_verbs_test_0123456789abcdef"
        self.assertIn("is stored", self.home.ok("key", "set", stdin=key + b"\n"))
        self.assertIn("is stored", self.home.ok("key", "status"))
        lookup = subprocess.run(["secret-tool", "lookup", "server", "org.lectorbell.Lectorbell",
                                 "user", "elevenlabs"], capture_output=True)
        self.assertEqual(lookup.stdout, key)
        for path in pathlib.Path(os.environ["LECTORBELL_KEYRING_HOME"]).rglob("*"):
            if path.is_file():
                self.assertNotIn(key, path.read_bytes(), path)
        self.home.ok("key", "delete")
        self.assertIn("No ElevenLabs key", self.home.ok("key", "status"))
        self.assertRefused(self.home.run("key", "set", stdin=b"\n"), "standard input")


class NoKeyring(VerbTest):
    """Run with no Secret Service on the bus."""

    def test_set_fails_and_keeps_nothing(self):
        key = b"sk_nowhere_0123456789"
        result = self.home.run("key", "set", stdin=key)
        self.assertEqual(result.returncode, 1)
        self.assertIn(b"Couldn't save the key to the keyring", result.stderr)
        self.assertNotIn(key, result.stdout + result.stderr)
        for path in self.home.root.rglob("*"):
            if path.is_file():
                self.assertNotIn(key, path.read_bytes(), path)


if __name__ == "__main__":
    LECTORBELL, FEEDBACK_SERVER = sys.argv[1], sys.argv[2]
    unittest.main(argv=[sys.argv[0]] + sys.argv[3:])
