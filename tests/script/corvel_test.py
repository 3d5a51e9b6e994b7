#!/usr/bin/env python3
"""What the script `corvel` does with its words and options, with packages, builds and their failures."""

import fcntl
import pathlib
import shutil
import sys
import unittest

sys.path.insert(0, str(pathlib.Path(__file__).parent))
from stage import Stage

WORDS = ("demo", "phone", "test", "bench", "format", "lint")


class ScriptTest(unittest.TestCase):
    def setUp(self):
        self.stage = self.enterContext(Stage())

    def fails(self, result, *words, status=1):
        """The run failed with one line on standard error, or one after the progress, that has all the words."""
        self.assertEqual(result.returncode, status, result.stderr)
        last = result.stderr.splitlines()[-1]
        self.assertTrue(last.startswith("corvel: "), result.stderr)
        for word in words:
            self.assertIn(word, last)

    def failsAtOnce(self, result, *words, status=1):
        """As `fails`, and nothing else was printed."""
        self.fails(result, *words, status=status)
        self.assertEqual(len(result.stderr.splitlines()), 1, result.stderr)
        self.assertEqual(result.stdout, "")

    def called(self, result, tool):
        return [call for call in result.calls if call.split()[0] == tool]

    def log(self, name):
        return (self.stage.folder / "build" / "log" / f"{name}.log").read_text()


class Words(ScriptTest):
    def test_without_a_word_it_names_the_words(self):
        result = self.stage.run()
        self.failsAtOnce(result, *WORDS, status=2)

    def test_an_unknown_word_is_named_and_nothing_runs(self):
        for word in ("dmeo", "--demo", "", "package me"):
            result = self.stage.run(word)
            self.failsAtOnce(result, f'unknown word "{word}"', "demo", status=2)
            self.assertEqual(result.calls, [])

    def test_an_unknown_option_is_named_and_nothing_runs(self):
        for word in WORDS:
            if word != "phone":   # its options are the phone's
                result = self.stage.run(word, "--bogus")
                self.failsAtOnce(result, word, '"--bogus"', "--help", status=2)
                self.assertEqual(result.calls, [])

    def test_a_stray_argument_is_refused(self):
        for word in ("demo", "test", "bench"):
            self.failsAtOnce(self.stage.run(word, "stray"), '"stray"', status=2)

    def test_an_option_without_its_value_is_named(self):
        for arguments in (["test", "--filter"], ["test", "--every"], ["bench", "--filter"], ["demo", "--out"], ["demo", "--out", ""]):
            self.failsAtOnce(self.stage.run(*arguments), arguments[1], "value", status=2)

    def test_help_tells_every_word(self):
        for arguments in (["help"], ["--help"], ["-h"]):
            result = self.stage.run(*arguments)
            self.assertEqual((result.returncode, result.stderr, result.calls), (0, "", []))
            for word in WORDS:
                self.assertRegex(result.stdout, rf"(?m)^  {word} ")

    def test_each_word_has_help_of_its_own(self):
        for word in WORDS:
            result = self.stage.run(word, "--help")
            self.assertEqual((result.returncode, result.stderr, result.calls), (0, "", []))
            self.assertTrue(result.stdout.startswith(f"usage: ./corvel {word}"))
            self.assertEqual(self.stage.run("help", word).stdout, result.stdout)

    def test_help_for_an_unknown_word_fails(self):
        self.failsAtOnce(self.stage.run("help", "dmeo"), '"dmeo"', status=2)

    def test_an_incomplete_copy_is_told(self):
        (self.stage.folder / "tools" / "building.sh").unlink()
        self.failsAtOnce(self.stage.run("demo"), "tools/building.sh is missing")
        shutil.rmtree(self.stage.folder / "tools")
        self.failsAtOnce(self.stage.run("help"), "tools/")


class Places(ScriptTest):
    def test_it_runs_from_another_folder(self):
        result = self.stage.run("demo", cwd="/")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn(f"--out|{self.stage.folder}/out/demo|", result.stdout)
        self.assertIn(f"-S {self.stage.folder} -B {self.stage.folder}/build/release", self.called(result, "cmake")[0])

    def test_it_runs_by_a_relative_path(self):
        result = self.stage.run("demo", cwd=self.stage.top, command="a clone/corvel")
        self.assertEqual(result.returncode, 0, result.stderr)
        result = self.stage.run("corvel", "demo", command="bash")
        self.assertEqual(result.returncode, 0, result.stderr)

    def test_it_runs_through_a_link(self):
        link = self.stage.top / "link to it"
        link.symlink_to(self.stage.folder / "corvel")
        result = self.stage.run("demo", cwd="/", command=str(link))
        self.assertEqual(result.returncode, 0, result.stderr)

    def test_a_demo_elsewhere_is_relative_to_the_caller(self):
        result = self.stage.run("demo", "--out", "my pictures", cwd=self.stage.top)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn("--out|my pictures|", result.stdout)
        self.assertTrue((self.stage.top / "my pictures").is_dir())

    def test_a_demo_that_has_no_place_fails(self):
        self.stage.write("a file", "")
        self.fails(self.stage.run("demo", "--out", "a file/pictures", cwd=self.stage.top), "a file/pictures")

    def test_a_folder_that_may_not_be_written_is_told(self):
        self.stage.folder.chmod(0o555)
        self.addCleanup(self.stage.folder.chmod, 0o755)
        self.failsAtOnce(self.stage.run("test"), "cannot write", "no permission")

    def test_continuous_integration_runs_the_tests_without_display(self):
        self.stage.offer_device()
        result = self.stage.run(cwd="/", command=str(self.stage.folder / ".ci" / "run"), DISPLAY=":0")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(result.stdout, "1 passed, 0 failed\n2 passed, 0 failed\n")
        folders = [call.split("--test-dir ")[1].split(" -j")[0] for call in self.called(result, "ctest")]
        self.assertEqual(folders, [f"{self.stage.folder}/build/{name}" for name in ("release", "device", "device-phone")])
        self.assertRegex(self.log("test-device"), r"one of [1-9]\d\n")

    def test_continuous_integration_fails_with_the_tests(self):
        self.stage.offer_device()
        self.stage.write("ctest.fails", "")
        result = self.stage.run(command=str(self.stage.folder / ".ci" / "run"))
        self.assertEqual(result.returncode, 1, result.stderr)
        self.assertEqual(len(self.called(result, "ctest")), 1)


class Packages(ScriptTest):
    def missing(self, *names):
        kept = [name for name in (self.stage.top / "installed").read_text().split() if name not in names]
        self.stage.write("installed", "".join(f"{name}\n" for name in kept))

    def test_nothing_is_installed_where_all_is_there(self):
        result = self.stage.run("demo")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual([call for call in result.calls if call.split()[0] in ("apt-get", "apt-cache", "sudo")], [])

    def test_only_what_is_missing_is_installed_by_name(self):
        self.missing("cmake", "libgtest-dev")
        result = self.stage.run("demo")
        self.assertEqual(result.returncode, 0, result.stderr)
        calls = self.called(result, "apt-get")
        self.assertEqual(len(calls), 1, calls)
        self.assertTrue(calls[0].endswith(" cmake libgtest-dev"), calls)
        for option in ("install", " -y ", "--no-install-recommends"):
            self.assertIn(option, calls[0])
        self.assertIn("DEBIAN_FRONTEND=noninteractive", self.called(result, "sudo")[-1])

    def test_a_package_of_another_architecture_or_removed_is_missing(self):
        for state in ("cmake:i386", "cmake:removed"):
            self.missing("cmake")
            with open(self.stage.top / "installed", "a", encoding="utf-8") as file:
                file.write(f"{state}\n")
            result = self.stage.run("demo")
            self.assertTrue(self.called(result, "apt-get")[0].endswith(" cmake"), result.calls)

    def test_a_package_for_every_architecture_counts(self):
        self.missing("fonts-inter")
        with open(self.stage.top / "installed", "a", encoding="utf-8") as file:
            file.write("fonts-inter:all\n")
        self.assertEqual(self.called(self.stage.run("demo"), "apt-get"), [])

    def test_indexes_are_fetched_once_at_most(self):
        self.missing("cmake")
        self.stage.write("known", "")
        self.stage.write("apt.fails", "E: Failed to fetch http://mirror/cmake.deb  404  Not Found\n")
        calls = self.called(self.stage.run("demo"), "apt-get")
        self.assertEqual([call.split()[1] for call in calls], ["update", "install"])

    def test_a_job_installs_its_own_packages_only(self):
        self.missing("libbenchmark-dev", "libsdl2-dev", "cppcheck")
        self.assertEqual(self.called(self.stage.run("demo"), "apt-get"), [])
        self.assertTrue(self.called(self.stage.run("bench"), "apt-get")[0].endswith(" libbenchmark-dev"))
        self.assertTrue(self.called(self.stage.run("phone", DISPLAY=":0"), "apt-get")[0].endswith(" libsdl2-dev"))

    def test_indexes_are_fetched_where_a_name_is_unknown(self):
        self.missing("cmake")
        self.stage.write("known", "")
        calls = self.called(self.stage.run("demo"), "apt-get")
        self.assertEqual([call.split()[1] for call in calls], ["update", "install"])

    def test_indexes_that_are_too_old_are_fetched_anew(self):
        self.missing("cmake")
        self.stage.write("apt.fails", "E: Failed to fetch http://mirror/cmake.deb  404  Not Found\n")
        self.stage.write("apt.fails.once", "")
        result = self.stage.run("demo")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual([call.split()[1] for call in self.called(result, "apt-get")], ["install", "update", "install"])

    def test_the_reason_of_a_failure_is_told(self):
        for output, reason in (
            ("Err: Temporary failure resolving 'deb.debian.org'", "mirror cannot be reached"),
            ("E: Failed to fetch http://mirror/cmake.deb Connection timed out", "mirror cannot be reached"),
            ("E: You don't have enough free space in /var/cache/apt/archives/.", "disk is full"),
            ("dpkg: error: write: No space left on device", "disk is full"),
            ("E: Unable to locate package cmake", "Unable to locate package cmake"),
            ("E: dpkg was interrupted, you must manually run", "dpkg --configure -a"),
            ("E: something new", "something new"),
        ):
            self.missing("cmake")
            self.stage.write("apt.fails", f"{output}\n")
            self.fails(self.stage.run("test"), reason, "packages.log")

    def test_a_package_that_does_not_arrive_is_told(self):
        self.missing("cmake")
        self.stage.stand_in("apt-get", "true")
        self.fails(self.stage.run("test"), "still missing", "cmake")

    def test_no_sudo_is_told_with_the_command_for_root(self):
        self.missing("cmake", "g++")
        self.stage.remove_tool("sudo")
        result = self.stage.run("test")
        self.failsAtOnce(result, "sudo", "apt-get install --no-install-recommends g++ cmake")
        self.assertEqual(self.called(result, "apt-get"), [])

    def test_sudo_that_wants_a_password_asks_nothing(self):
        self.missing("cmake")
        self.stage.write("sudo.refuses", "")
        result = self.stage.run("test")
        self.failsAtOnce(result, "password", "sudo -v")
        self.assertEqual(self.called(result, "sudo"), ["sudo -n true"])

    def test_nothing_is_installed_where_that_is_forbidden(self):
        self.missing("cmake")
        for word in ("demo", "test", "bench", "lint"):
            result = self.stage.run(word, "--no-install")
            self.failsAtOnce(result, "--no-install", "cmake")
            self.assertEqual(self.called(result, "apt-get"), [])

    def test_another_system_is_told(self):
        self.stage.remove_tool("dpkg-query")
        self.failsAtOnce(self.stage.run("test"), "dpkg", "Debian 12")


class Building(ScriptTest):
    def test_a_missing_tool_is_named(self):
        for tool in ("cmake", "ninja", "g++"):
            with self.subTest(tool):
                self.stage.remove_tool(tool)
                self.failsAtOnce(self.stage.run("test"), f"{tool} is not found in PATH")
                self.stage.stand_in(tool, "true")

    def test_a_second_run_configures_nothing(self):
        self.assertEqual(len(self.called(self.stage.run("demo"), "cmake")), 1)
        for word in ("demo", "test", "phone"):
            result = self.stage.run(word, *(["--headless"] if word == "phone" else []))
            self.assertEqual(result.returncode, 0, result.stderr)
            self.assertEqual(self.called(result, "cmake"), [], word)
            self.assertEqual(len(self.called(result, "ninja")), 1, word)

    def test_a_changed_package_list_configures_again(self):
        self.stage.run("demo")
        with open(self.stage.folder / "packages" / "test.txt", "a", encoding="utf-8") as file:
            file.write("# and one more\n")
        self.assertEqual(len(self.called(self.stage.run("demo"), "cmake")), 1)

    def test_a_window_once_built_stays_built(self):
        self.assertNotIn("CORVEL_WINDOW", self.called(self.stage.run("demo"), "cmake")[0])
        self.assertIn("-DCORVEL_WINDOW=ON", self.called(self.stage.run("phone", DISPLAY=":0"), "cmake")[0])
        self.assertEqual(self.called(self.stage.run("phone", WAYLAND_DISPLAY="w"), "cmake"), [])
        self.assertEqual(self.called(self.stage.run("test"), "cmake"), [])

    def test_a_folder_that_was_moved_is_built_anew(self):
        self.stage.run("demo")
        (self.stage.folder / "build" / "release" / "old object").touch()
        moved = self.stage.top / "moved"
        self.stage.folder.rename(moved)
        self.stage.folder = moved
        result = self.stage.run("demo")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(len(self.called(result, "cmake")), 1)
        self.assertFalse((moved / "build" / "release" / "old object").exists())

    def test_what_cmake_remembers_is_dropped_where_it_fails(self):
        self.stage.run("demo")
        with open(self.stage.folder / "packages" / "test.txt", "a", encoding="utf-8") as file:
            file.write("# and one more\n")
        body = 'echo "CMake Error: a library has gone"; [[ " $* " == *" --fresh "* ]]'
        self.stage.stand_in("cmake", body)
        result = self.stage.run("demo")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(len(self.called(result, "cmake")), 2)

    def test_ccache_is_used_only_where_it_can_keep_something(self):
        self.stage.stand_in("ccache", 'echo "$STAGE/cache"')
        ccache = f"-DCMAKE_CXX_COMPILER_LAUNCHER={self.stage.tools}/ccache "
        self.assertIn(ccache, self.called(self.stage.run("demo"), "cmake")[0] + " ")
        shutil.rmtree(self.stage.top / "cache")
        self.stage.write("cache", "a file in its place")
        self.assertNotIn("/ccache", self.called(self.stage.run("demo"), "cmake")[0])

    def test_a_failed_configuration_shows_its_error(self):
        self.stage.write("cmake.fails", "-- fine so far\nCMake Error at CMakeLists.txt:3:\n  no such library\n")
        result = self.stage.run("test")
        self.fails(result, "configuring build/release failed", "configure-release.log")
        self.assertIn("no such library", result.stderr)
        self.assertNotIn("fine so far", result.stderr)
        self.assertEqual(self.called(result, "ninja"), [])

    def test_a_compiler_error_is_shown_without_the_wall(self):
        wall = "".join(f"[{n}/900] Building CXX object {n}.o\n" for n in range(1, 900))
        error = "FAILED: a.o\n/usr/bin/g++ -O1 a.cpp\na.cpp:3:5: error: 'foo' was not declared\n    3 | foo();\n"
        self.stage.write("ninja.prints", wall + error + "ninja: build stopped: subcommand failed.\n")
        self.stage.write("ninja.fails", "")
        result = self.stage.run("test")
        self.fails(result, "building failed", "build-release.log")
        self.assertIn("a.cpp:3:5: error: 'foo' was not declared\n    3 | foo();", result.stderr)
        self.assertNotIn("Building CXX", result.stderr)
        self.assertLess(len(result.stderr.splitlines()), 20)
        self.assertIn("[899/900]", self.log("build-release"))

    def test_thousands_of_errors_are_cut(self):
        self.stage.write("ninja.prints", "".join(f"a.cpp:{n}:1: error: no\n" for n in range(3000)))
        self.stage.write("ninja.fails", "")
        result = self.stage.run("test")
        self.assertLess(len(result.stderr.splitlines()), 60)
        self.assertIn("a.cpp:0:1: error", result.stderr)

    def test_a_linker_error_is_shown(self):
        self.stage.write("ninja.prints", "[3/9] Linking\n/usr/bin/ld: a.o: undefined reference to `foo()'\n")
        self.stage.write("ninja.fails", "")
        self.assertIn("undefined reference to `foo()'", self.stage.run("test").stderr)

    def test_a_disk_that_fills_up_is_told(self):
        self.stage.write("ninja.prints", "[3/9] Building\nfatal error: error writing to a.s: No space left on device\n")
        self.stage.write("ninja.fails", "")
        self.fails(self.stage.run("test"), "the disk is full")

    def test_too_little_space_is_told_before_anything_is_built(self):
        self.stage.write("free", "50000\n")
        result = self.stage.run("test")
        self.failsAtOnce(result, "48 MB are free", "1200 MB")
        self.assertEqual(self.called(result, "cmake"), [])


    def test_a_build_waits_for_another_in_the_same_folder(self):
        (self.stage.folder / "build").mkdir()
        with open(self.stage.folder / "build" / "release.lock", "w", encoding="utf-8") as lock:
            fcntl.flock(lock, fcntl.LOCK_EX)
            second = self.enterContext(self.stage.start("demo"))
            self.assertIn("waiting for another ./corvel", second.stderr.readline())
            self.assertNotIn("\nninja ", (self.stage.top / "calls").read_text())
        _, errors = second.communicate(timeout=60)
        self.assertEqual(second.returncode, 0, errors)
        self.assertIn("\nninja ", (self.stage.top / "calls").read_text())


class Running(ScriptTest):
    def test_the_phone_gets_its_options_in_the_callers_folder(self):
        result = self.stage.run("phone", "--shot", "a picture.png", "--no-install", "--system=12.4", cwd=self.stage.top)
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(result.stdout, f"corvel-phone|{self.stage.top}|--shot|a picture.png|--system=12.4|")

    def test_the_phones_status_is_the_scripts(self):
        self.assertEqual(self.stage.run("phone", "--shot", "x", PROGRAM_STATUS="7").returncode, 7)
        self.assertEqual(self.stage.run("demo", PROGRAM_STATUS="3").returncode, 3)
        self.assertEqual(self.stage.run("bench", PROGRAM_STATUS="4").returncode, 4)

    def test_without_a_display_the_phone_offers_a_picture(self):
        result = self.stage.run("phone")
        self.failsAtOnce(result, "no display", "--shot FILE")
        self.assertEqual(result.calls, [])

    def test_the_phones_own_help_follows_once_it_is_built(self):
        self.stage.run("demo")
        result = self.stage.run("phone", "--help")
        self.assertIn("usage: ./corvel phone", result.stdout)
        self.assertIn("|--help|", result.stdout)

    def test_progress_stays_off_standard_output(self):
        self.assertEqual(self.stage.run("phone", "--headless").stdout, f"corvel-phone|{self.stage.folder}|--headless|")

    def test_benchmarks_are_built_on_their_own(self):
        result = self.stage.run("bench", "--filter", "scroll.*")
        self.assertIn("--preset bench", self.called(result, "cmake")[0])
        self.assertIn("|--benchmark_filter=scroll.*|", result.stdout)


class Tests(ScriptTest):
    def test_sanitizers_have_a_build_of_their_own(self):
        result = self.stage.run("test", "--sanitize")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertIn("--preset sanitize", self.called(result, "cmake")[0])
        self.assertIn(f"--test-dir {self.stage.folder}/build/sanitize", self.called(result, "ctest")[0])

    def test_the_iphones_library_is_tested_beside_the_desktops(self):
        stale = self.stage.folder / "build" / "device-phone" / "stories"
        stale.mkdir(parents=True)
        self.stage.write("ctest.prints", (
            "1: Ran 5 tests in 0.2s\n1: \n1: OK\n1/2 Test #1: device.check ....   Passed    0.02 sec\n"
            "2/2 Test #2: stories.same ....   Passed    0.02 sec\n"
        ))
        self.stage.offer_device()
        result = self.stage.run("test", "--device")
        self.assertEqual(result.returncode, 0, result.stderr)
        for name in ("device", "release", "device-phone"):
            self.assertEqual(sum(f"--preset {name} " in call + " " for call in self.called(result, "cmake")), 1, name)
        self.assertIn(" stories", self.called(result, "ninja")[1])
        folders = [call.split("--test-dir ")[1].split(" -j")[0] for call in self.called(result, "ctest")]
        self.assertEqual(folders, [f"{self.stage.folder}/build/{name}" for name in ("device", "device-phone")])
        self.assertFalse(stale.exists())
        # The same numbers come twice, once for each run of ctest.
        self.assertEqual(result.stdout, "12 passed, 0 failed\n")

    def test_libraries_that_cannot_be_had_are_told(self):
        self.stage.offer_device("echo 'sysroot.sh: error: no mirror' >&2; exit 1")
        result = self.stage.run("test", "--device")
        self.fails(result, "unpacking libraries for arm64 failed", "sysroot.log")
        self.assertIn("no mirror", result.stderr)

    def clients(self, node="true"):
        (self.stage.folder / "tests" / "clients" / "npm").mkdir(parents=True, exist_ok=True)
        (self.stage.folder / "tests" / "clients" / "npm" / "package.json").write_text("{}")
        self.stage.stand_in("node", node)
        self.stage.stand_in("npm", 'pwd > "$STAGE/npm.folder"; [[ ! -e $STAGE/npm.fails ]]')
        with open(self.stage.top / "installed", "a", encoding="utf-8") as installed:
            installed.write("".join(f"{name}\n" for name in self.stage.packages("clients")))
        return self.stage.run("test", "--clients")

    def test_clients_are_installed_in_the_build_folder_and_told_their_stories(self):
        result = self.clients()
        self.assertEqual(result.returncode, 0, result.stderr)
        folder = self.stage.folder / "build" / "clients"
        self.assertEqual((self.stage.top / "npm.folder").read_text().strip(), str(folder))
        self.assertTrue((folder / "package.json").exists())
        self.assertIn(" -C clients -R ^clients[.]", self.called(result, "ctest")[-1])

    def test_clients_that_cannot_be_had_are_told(self):
        self.fails(self.clients("[[ $1 == --version ]] && echo v18.19.0"), "need Node 20.19", "v18.19.0")
        self.stage.write("npm.fails", "")
        self.fails(self.clients(), "npm could not install the clients", "clients.log")
        self.stage.remove_tool("npm")
        self.fails(self.stage.run("test", "--clients"), "need Node 20.19 or later and npm")

    def test_a_test_programs_name_is_a_filter(self):
        result = self.stage.run("test", "--filter", "objc")
        self.assertEqual(result.stdout, "1 passed, 0 failed\n")
        self.assertIn(" -R objc", self.called(result, "ctest")[-1])

    def test_a_cases_name_is_a_filter(self):
        self.stage.write("ctest.prints", (
            "1: [==========] Running 1 test from 1 test suite.\n1: [ RUN      ] Clock.Ticks\n"
            "1: [       OK ] Clock.Ticks (0 ms)\n1/2 Test #1: a ....   Passed    0.01 sec\n"
            "2: [==========] Running 0 tests from 0 test suites.\n2/2 Test #2: b ....   Passed    0.01 sec\n"
        ))
        result = self.stage.run("test", "--filter", "Clock")
        self.assertEqual(result.stdout, "1 passed, 0 failed\n")
        self.assertIn("filter: *Clock*", self.log("test-release"))

    def test_a_part_of_the_tests_can_be_had(self):
        self.stage.run("test", "--every", "20")
        self.assertIn("one of 20\n", self.log("test-release"))
        for number in ("0", "x", "-1", "1.5", "1000000"):
            self.failsAtOnce(self.stage.run("test", "--every", number), "--every takes a number", status=2)

    def test_a_filter_that_fits_nothing_fails(self):
        self.stage.write("ctest.prints", (
            "1: [==========] Running 0 tests from 0 test suites.\n1/1 Test #1: a ....   Passed    0.01 sec\n"
        ))
        self.fails(self.stage.run("test", "--filter", "Nothing"), '"Nothing"')

    def test_no_test_at_all_fails(self):
        self.stage.write("ctest.prints", "No tests were found!!!\n")
        self.stage.write("ctest.fails", "")
        self.fails(self.stage.run("test"), "No tests were found")

    def test_an_empty_build_is_no_success(self):
        self.assertIn("--no-tests=error", self.called(self.stage.run("test"), "ctest")[0])

    def test_a_failure_counts_whatever_the_program_returned(self):
        self.stage.write("ctest.prints", (
            "1: [==========] Running 1 test from 1 test suite.\n1: [ RUN      ] Clock.Ticks\n"
            "1: [  FAILED  ] Clock.Ticks (0 ms)\n1/1 Test #1: a ....   Passed    0.01 sec\n"
        ))
        result = self.stage.run("test")
        self.assertEqual((result.returncode, result.stdout), (1, "0 passed, 1 failed\n"))

    def test_failures_are_shown_and_counted(self):
        self.stage.write("ctest.fails", "")
        self.stage.write("ctest.prints", "".join(f"{line}\n" for line in (
            "1: [==========] Running 3 tests from 1 test suite.",
            "1: [ RUN      ] Strip.Fits",
            "1: [       OK ] Strip.Fits (1 ms)",
            "1: [ RUN      ] Strip.Scrolls",
            "1: strip_test.cpp:9: Failure",
            "1: [  FAILED  ] Strip.Scrolls, where GetParam() = 3 (2 ms)",
            "1: [ RUN      ] Strip.Turns",
            "1: [  SKIPPED ] Strip.Turns (0 ms)",
            "1: [  FAILED  ] 1 test, listed below:",
            "1: [  FAILED  ] Strip.Scrolls, where GetParam() = 3",
            "1/4 Test #1: strip_test ....***Failed    0.02 sec",
            "2: [==========] Running 2 tests from 1 test suite.",
            "2: [ RUN      ] Cell.Draws",
            "2: [       OK ] Cell.Draws (0 ms)",
            "2: [ RUN      ] Cell.Crashes",
            "2: last words",
            "2/4 Test #2: cell_test ....***Exception: SegFault  0.02 sec",
            "3: Ran 5 tests in 0.2s",
            "3: ",
            "3: FAILED (failures=1, errors=1, skipped=1)",
            "3/4 Test #3: script.corvel ....***Failed    0.02 sec",
            "4/4 Test #4: plain ....   Passed    0.02 sec",
        )))
        result = self.stage.run("test")
        self.assertEqual(result.returncode, 1)
        # Passed: Fits, Draws, two of unittest's five, plain. Failed: Scrolls, Crashes, two of unittest's.
        self.assertEqual(result.stdout, "5 passed, 4 failed, 2 skipped\n")
        for shown in ("strip_test.cpp:9: Failure", "last words", "SegFault", "test-release.log"):
            self.assertIn(shown, result.stderr)
        self.assertNotIn("Strip.Fits", result.stderr)


class Formatting(ScriptTest):
    def setUp(self):
        super().setUp()
        (self.stage.folder / "objc").mkdir()
        (self.stage.folder / "objc" / "send.cpp").write_text("int a;\n")
        self.stage.stand_in("clang-format", '[[ " $* " != *--dry-run* || ! -e $STAGE/layout.differs ]]')

    def test_format_changes_every_source(self):
        result = self.stage.run("format", cwd="/")
        self.assertEqual(result.returncode, 0, result.stderr)
        self.assertEqual(result.calls[-1], "clang-format -i objc/send.cpp")

    def test_a_check_names_the_file_and_changes_nothing(self):
        self.assertEqual(self.stage.run("format", "--check").returncode, 0)
        self.stage.write("layout.differs", "")
        result = self.stage.run("format", "--check")
        self.assertEqual(result.returncode, 1)
        self.assertIn("objc/send.cpp", result.stdout)
        self.assertNotIn(" -i ", "".join(result.calls))

    def test_a_file_that_is_not_ours_is_refused(self):
        self.failsAtOnce(self.stage.run("format", "nothing.cpp"), "no such file", "nothing.cpp")
        self.stage.write("outside.cpp", "")
        self.failsAtOnce(self.stage.run("format", "../outside.cpp"), "outside")


if __name__ == "__main__":
    unittest.main()
