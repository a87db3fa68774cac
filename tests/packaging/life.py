"""The MSI's life on a machine: tests/packaging/life.py FOLDER

FOLDER contains the packages of two versions, the plug-in, and base, a copy of Wine's prefix as it was made. Each test
has a machine of its own. All installations are silent."""

import re
import shutil
import subprocess
import sys
import time
import unittest
import zipfile
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent.parent
WORK = Path(sys.argv.pop(1))
(NEW,), (OLD,) = WORK.glob("first/*.msi"), WORK.glob("older/*.msi")
(ZIP,) = WORK.glob("first/*[0-9].zip")
DRIVE = WORK / "prefix" / "drive_c"
PROGRAMS = DRIVE / "Program Files/Corvell/Ziptra Remote Service"
STATUS = DRIVE / "ProgramData/Corvell/zuZiptraRemoteService.status"
SHARED = "C:\\共享 shared dir"
PLUGINS = DRIVE / "共享 shared dir/ZiptraRemoteService/plugins"
SERVICE = "HKLM\\SYSTEM\\CurrentControlSet\\Services\\zuZiptraRemoteService"
MAKER = "HKLM\\SOFTWARE\\Corvell"
QUOTED = '"\\"C:\\\\Program Files\\\\Corvell\\\\Ziptra Remote Service\\\\zuZiptraRemoteService.exe\\""'
DESCRIPTION = f"""[Service]
Name=Counter
Requires=1
Path={SHARED}\\ZiptraRemoteService\\plugins\\counter.dll
Initialize=CounterInitialize
Stop=CounterStop
"""


def wine(*command):
    """The exit code and the output. Into a file, because Wine's own processes keep a pipe open."""
    with (WORK / "output").open("w+b") as output:
        code = subprocess.run(["wine", *command], stdin=subprocess.DEVNULL, stdout=output, stderr=subprocess.DEVNULL,
                              timeout=300).returncode
        output.seek(0)
        return code, output.read()


def at_once(*commands):
    """The exit codes and outputs of commands that run at the same time."""
    running = []
    for number, command in enumerate(commands):
        with (WORK / f"output{number}").open("wb") as output:
            running.append(subprocess.Popen(["wine", *command], stdin=subprocess.DEVNULL, stdout=output,
                                            stderr=subprocess.STDOUT))
    codes = [process.wait(timeout=300) for process in running]
    return [(code, (WORK / f"output{number}").read_text()) for number, code in enumerate(codes)]


def answer(*question):
    """The output of a program that always prints something. On a busy machine, Wine sometimes fails to start one."""
    for _ in range(3):
        _, output = wine(*question)
        if output:
            break
    return output


def registry(key):
    """What is in the key, as text in the form of exported files; empty if there is no such key."""
    exported = DRIVE / "export.reg"
    exported.unlink(missing_ok=True)
    answer("reg", "export", key, "C:\\export.reg", "/y")
    return exported.read_text("utf-16") if exported.exists() else ""


def runs():
    return b"RUNNING" in answer("sc", "query", "zuZiptraRemoteService")


def becomes_true(condition, seconds=30):
    end = time.monotonic() + seconds
    while not condition() and time.monotonic() < end:
        time.sleep(0.2)
    return condition()


def calls():
    path = DRIVE / "calls.txt"
    return path.read_text().split() if path.exists() else []


class Life(unittest.TestCase):
    def setUp(self):
        subprocess.run(["wineserver", "--kill"], check=False)
        subprocess.run(["wineserver", "--wait"], check=False)
        shutil.rmtree(WORK / "prefix")
        subprocess.run(["cp", "-a", WORK / "base", WORK / "prefix"], check=True)
        # Wine ends all services together with the last program that is none, so there is one that waits for its input.
        session = subprocess.Popen(["wine", "cmd"], stdin=subprocess.PIPE, stdout=subprocess.DEVNULL,
                                   stderr=subprocess.DEVNULL)
        self.addCleanup(lambda: (session.kill(), session.stdin.close(), session.wait()))

    def msi(self, action, package, *properties):
        """The lines of the log and whether it succeeded."""
        log = DRIVE / "log.txt"
        log.unlink(missing_ok=True)
        code, _ = wine("msiexec", action, f"Z:{package}", "/qn", "/l*v", "C:\\log.txt", *properties)
        lines = log.read_text(errors="replace").splitlines() if log.exists() else []
        return [line for line in lines if not line.startswith("Property")], code == 0

    def does(self, action, package, *properties):
        lines, succeeded = self.msi(action, package, *properties)
        self.assertTrue(succeeded, "\n".join(lines[-60:]))
        return lines

    def refuses(self, line, action, package, *properties):
        """The package fails, and says why."""
        lines, succeeded = self.msi(action, package, *properties)
        self.assertFalse(succeeded)
        marked = [logged for logged in lines if logged.startswith("ziptra: ")]
        self.assertTrue(any(line in logged for logged in marked), "\n".join(lines[-60:]))

    def add_plugin(self):
        shutil.copy(WORK / "counter.dll", PLUGINS)
        (PLUGINS / "counter.ini").write_text(DESCRIPTION)

    def install(self, package, *properties):
        self.does("/i", package, f"SHAREDDIR={SHARED}", *properties)
        self.assertTrue(becomes_true(runs))

    def install_again(self):
        """Whatever has happened before, an installation makes everything complete."""
        self.does("/i", NEW)
        self.assertTrue(becomes_true(runs))
        self.assertIn(f'"ImagePath"={QUOTED}', registry(SERVICE))
        self.assertIn("ZUSHAREDDIR64", registry(MAKER))
        programs = registry("HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall")
        self.assertEqual(programs.count('"DisplayName"="ZU-Ziptra Remote Service"'), 1)
        self.assertEqual(wine(str(PROGRAMS / "ziptra.exe"), "audit")[0], 0)

    def install_with_plugin(self, package, *properties):
        """Installs it, and starts the service again with a plug-in."""
        self.install(package, *properties)
        self.add_plugin()
        wine("net", "stop", "zuZiptraRemoteService")
        wine("net", "start", "zuZiptraRemoteService")
        self.assertTrue(becomes_true(lambda: calls() == ["start"]))

    def assert_nothing_is_installed(self):
        self.assertFalse(registry(SERVICE))
        self.assertFalse(list(PROGRAMS.glob("*")))
        self.assertNotIn("ZUSHAREDDIR64", registry(MAKER))
        self.assertNotIn("Ziptra", registry("HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall"))

    def test_an_installation_has_all_that_ziptra_install_sets(self):
        self.install(NEW)
        self.assertEqual({path.name for path in PROGRAMS.iterdir()},
                         {"LICENSE", "ziptra.exe", "zuZiptraRemoteService.exe"})
        service = registry(SERVICE)
        self.assertIn(f'"ImagePath"={QUOTED}', service)
        self.assertIn('"Start"=dword:00000002', service)
        self.assertIn("ziptra status", service)  # the description
        self.assertIn(f'"ZUSHAREDDIR64"="{SHARED}"'.replace("C:\\", "C:\\\\"), registry(MAKER))
        self.assertTrue(PLUGINS.is_dir())
        self.assertTrue(becomes_true(STATUS.exists))
        path = registry("HKLM\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment")
        self.assertNotIn("OnPath", registry(MAKER))
        self.assertNotIn("Remote Service", path)

    def test_ziptra_has_nothing_to_add(self):
        self.install(NEW, "START=auto")
        answer = wine(str(PROGRAMS / "ziptra.exe"), "install", "--start", "auto")[1].decode()
        self.assertEqual(answer, "Nothing to do: everything is as requested\n")

    def test_the_same_version_again_leaves_everything(self):
        self.install(NEW)
        before = registry(SERVICE), registry(MAKER)
        self.add_plugin()
        self.does("/i", NEW)
        self.assertTrue(becomes_true(runs))
        self.assertEqual((registry(SERVICE), registry(MAKER)), before)
        self.assertEqual((PLUGINS / "counter.ini").read_text(), DESCRIPTION)

    def test_a_repair_changes_neither_start_nor_shared_directory(self):
        self.install(NEW, "START=auto")
        self.does("/i", NEW, "START=demand", "SHAREDDIR=C:\\other")
        self.assertIn('"Start"=dword:00000002', registry(SERVICE))
        self.assertNotIn("other", registry(MAKER))

    def test_an_upgrade_stops_and_starts_the_service_once(self):
        self.install_with_plugin(OLD)
        edited = DESCRIPTION + "; edited\n"
        (PLUGINS / "counter.ini").write_text(edited)
        (PLUGINS / "data").write_text("of the plug-in")
        self.assertIn('"Version"="0.0.9"', registry(MAKER))
        old = (PROGRAMS / "ziptra.exe").read_bytes()
        self.does("/i", NEW)
        self.assertTrue(becomes_true(lambda: calls() == ["start", "stop", "start"]), calls())
        self.assertTrue(runs())
        self.assertNotEqual((PROGRAMS / "ziptra.exe").read_bytes(), old)
        self.assertNotIn('"Version"="0.0.9"', registry(MAKER))
        self.assertIn(f'"ImagePath"={QUOTED}', registry(SERVICE))
        self.assertIn("InstalledSharedDirectory", registry(SERVICE))
        self.assertEqual((PLUGINS / "counter.ini").read_text(), edited)
        self.assertEqual((PLUGINS / "data").read_text(), "of the plug-in")
        programs = registry("HKLM\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall")
        self.assertEqual(programs.count('"DisplayName"="ZU-Ziptra Remote Service"'), 1)

    def test_an_upgrade_keeps_the_start_and_the_place_on_path(self):
        self.install(OLD, "START=demand", "ADDTOPATH=1")
        self.does("/i", NEW)
        self.assertIn('"Start"=dword:00000003', registry(SERVICE))
        self.assertIn('"OnPath"="1"', registry(MAKER))
        environment = answer("reg", "query", "HKLM\\SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment")
        self.assertEqual(environment.count(b"Ziptra Remote Service"), 1, environment)

    def test_a_removal_leaves_descriptions_and_data(self):
        self.install_with_plugin(NEW)
        (PLUGINS / "data").write_text("of the plug-in")
        self.does("/x", NEW)
        self.assertEqual(calls(), ["start", "stop"])
        self.assert_nothing_is_installed()
        self.assertFalse(STATUS.parent.exists())
        self.assertEqual({path.name for path in PLUGINS.iterdir()}, {"counter.dll", "counter.ini", "data"})

    def test_a_removal_leaves_a_shared_directory_that_was_there(self):
        wine("reg", "add", MAKER + "\\Common\\Installer", "/v", "ZUSHAREDDIR64", "/d", "C:\\other", "/f")
        self.does("/i", NEW)
        self.does("/x", NEW)
        self.assertIn('"ZUSHAREDDIR64"="C:\\\\other"', registry(MAKER))

    def test_an_older_version_does_not_replace_a_newer_one(self):
        self.install(NEW)
        before = (PROGRAMS / "ziptra.exe").read_bytes()
        self.assertFalse(self.msi("/i", OLD)[1])
        self.assertEqual((PROGRAMS / "ziptra.exe").read_bytes(), before)
        self.assertTrue(runs())

    def test_a_first_installation_that_fails_is_taken_back(self):
        self.refuses("The folder Q:\\shared could not be created", "/i", NEW, "SHAREDDIR=Q:\\shared")
        self.assert_nothing_is_installed()

    def test_what_cannot_be_done_changes_nothing(self):
        (DRIVE / "file").write_text("")
        self.refuses("C:\\file is a file, but should be a folder", "/i", NEW, "SHAREDDIR=C:\\file")
        self.refuses('"shared", is not the full path of a folder on a drive', "/i", NEW, "SHAREDDIR=shared")
        self.refuses("START must be delayed, auto or demand, not never", "/i", NEW, "START=never")
        self.assert_nothing_is_installed()
        self.assertFalse(STATUS.parent.exists())

    def test_a_shared_directory_of_the_machine_that_is_missing_or_a_file_is_refused(self):
        (DRIVE / "file").write_text("")
        for path, line in (("Q:\\gone", "The folder Q:\\gone could not be created"),
                           ("C:\\file", "C:\\file is a file, but should be a folder")):
            wine("reg", "add", MAKER + "\\Common\\Installer", "/v", "ZUSHAREDDIR64", "/d", path, "/f")
            before = registry(MAKER)
            self.refuses(line, "/i", NEW)
            self.assertEqual(registry(MAKER), before)
            self.assertFalse(registry(SERVICE))
            self.assertFalse(list(PROGRAMS.glob("*")))

    def test_status_files_that_users_have_put_there_are_not_written_through(self):
        victim = DRIVE / "victim"
        victim.write_text("of someone else")
        STATUS.parent.mkdir(parents=True)
        temporary = STATUS.parent / ".zuZiptraRemoteService.status.tmp"
        temporary.hardlink_to(victim)
        STATUS.parent.chmod(0o777)
        self.install(NEW)
        self.assertTrue(becomes_true(STATUS.exists))
        self.assertEqual(victim.read_text(), "of someone else")

    # Its lines for administrators and reports, with a description that the host rejects.
    def test_the_page_for_the_first_hour_works_as_written(self):
        page = re.sub(r"zuZiptraRemoteService-[\d.]+\.msi", NEW.name, (ROOT / "docs/windows.md").read_text())
        blocks = [block for block in re.findall(r"```bat\n(.*?)```", page, re.S) if "cmake" not in block]
        self.assertEqual(len(blocks), 8)
        removal = next(block for block in blocks if "msiexec /x" in block)
        blocks.remove(removal)
        plugins = "C:\\Program Files\\Common Files\\Corvell\\ZiptraRemoteService\\plugins"
        blocks.insert(1, f'echo [Service]> "{plugins}\\Scheduler.ini"\necho.>> "{plugins}\\Scheduler.ini"\n')
        lines = "".join([*blocks, removal]).splitlines()
        (DRIVE / "page").mkdir()
        shutil.copy(NEW, DRIVE / "page")
        # The service reads the description after it has reported that it runs.
        lines.insert(lines.index("net start zuZiptraRemoteService") + 1, "@ping -n 6 127.0.0.1 >nul")
        marked = [line + "\n@echo [%ERRORLEVEL%] " + line.split(" >")[0] for line in lines if "ERRORLEVEL" not in line]
        (DRIVE / "page/page.bat").write_text("@cd /d C:\\page\n" + "\n".join(marked).replace("\n", "\r\n") + "\r\n")
        output = wine("cmd", "/c", "C:\\page\\page.bat")[1].decode()
        codes = re.findall(r"(?m)^\[(\d+)\] (.*?)\s*$", output)
        tried = [(code, line) for code, line in codes if re.match("start|find|net|ziptra|reg ", line)]
        self.assertEqual(len(tried), 13, output)
        for code, line in tried:
            failing = re.match("ziptra (status|check)", line)
            self.assertEqual(code, "1" if failing else "0", line + "\n" + output)
        self.assertIn("ziptra: Created the folder " + plugins, output)
        self.assertIn("report\\Scheduler.ini:2: error: blank line", output)
        self.assert_nothing_is_installed()

    def test_two_runs_of_the_tool_at_once_leave_a_service_that_a_third_one_completes(self):
        PROGRAMS.mkdir(parents=True)
        with zipfile.ZipFile(ZIP) as archive:
            archive.extractall(PROGRAMS)
        tool = str(PROGRAMS / "ziptra.exe")
        for command in ("install", "repair"):
            for code, output in at_once((tool, command), (tool, command)):
                self.assertIn(code, (0, 2))
                self.assertEqual(code == 2, "ziptra: " in output, output)
            self.assertEqual(wine(tool, "install")[0], 0)
            self.assertEqual(wine(tool, "install")[1], b"Nothing to do: everything is as requested\n")
            self.assertTrue(runs())

    # Windows Installer refuses the second one (1618), Wine does not.
    def test_two_installations_at_once_leave_a_service_that_a_third_one_completes(self):
        self.assertIn(0, [code for code, _ in at_once(*[("msiexec", "/i", f"Z:{NEW}", "/qn")] * 2)])
        self.install_again()

    # That the programs have space is checked by Windows Installer, not by Wine.
    def test_a_disk_without_space_for_its_folders_is_refused_and_all_taken_back(self):
        disk = DRIVE / "full"
        disk.mkdir()
        subprocess.run(["mount", "-t", "tmpfs", "-o", "nr_inodes=1", "tmpfs", disk], check=True)
        try:
            self.refuses("The folder C:\\full\\ZiptraRemoteService could not be created: ", "/i", NEW, "SHAREDDIR=C:\\full")
            self.assert_nothing_is_installed()
        finally:
            subprocess.run(["umount", "--lazy", disk], check=True)
        self.install_again()

    def test_an_upgrade_that_cannot_be_done_leaves_the_service_running(self):
        self.install_with_plugin(OLD)
        before = registry(SERVICE), registry(MAKER), (PROGRAMS / "ziptra.exe").read_bytes()
        self.refuses("which other programs may use", "/i", NEW, "SHAREDDIR=C:\\other")
        self.assertEqual((registry(SERVICE), registry(MAKER), (PROGRAMS / "ziptra.exe").read_bytes()), before)
        self.assertTrue(runs())
        self.assertEqual(calls(), ["start"])

    def test_a_service_that_others_have_registered_stays(self):
        wine("sc", "create", "zuZiptraRemoteService", "binPath=", "C:\\by hand\\host.exe")
        before = registry(SERVICE)
        self.assertIn("by hand", before)
        self.refuses("no package has installed it (C:\\by hand\\host.exe)", "/i", NEW)
        self.assertEqual(registry(SERVICE), before)
        self.assertFalse(PROGRAMS.exists())

    def test_a_service_that_is_disabled_stays_so(self):
        self.install(NEW, "START=demand")
        shutil.copy(WORK / "counter.dll", DRIVE)
        wine("rundll32", "C:\\counter.dll,DisableService")
        before = registry(SERVICE)
        self.assertIn('"Start"=dword:00000004', before)
        self.refuses("The service zuZiptraRemoteService is disabled", "/i", NEW)
        self.assertEqual(registry(SERVICE), before)
        self.does("/x", NEW)
        self.assert_nothing_is_installed()

    def test_a_removal_that_cannot_be_done_leaves_the_service_running(self):
        self.install_with_plugin(NEW)
        before = registry(SERVICE), registry(MAKER)
        status = "C:\\ProgramData\\Corvell\\zuZiptraRemoteService.status"
        reader = subprocess.Popen(["wine", "cmd", "/c", f"ping -n 300 127.0.0.1 <{status} >C:\\pings.txt"])
        self.addCleanup(lambda: (reader.kill(), reader.wait()))
        self.assertTrue(becomes_true((DRIVE / "pings.txt").exists))
        self.refuses("The file " + status + " could not be deleted: ", "/x", NEW)
        self.assertTrue(becomes_true(runs))
        self.assertEqual((registry(SERVICE), registry(MAKER)), before)
        self.assertTrue((PROGRAMS / "zuZiptraRemoteService.exe").exists())

    def test_a_service_that_does_not_stop_is_not_replaced(self):
        self.install_with_plugin(OLD)
        before = (PROGRAMS / "ziptra.exe").read_bytes()
        (DRIVE / "hang").write_text("")
        self.addCleanup((DRIVE / "hang").unlink, missing_ok=True)
        self.refuses("The service could not be stopped", "/i", NEW)
        self.assertEqual((PROGRAMS / "ziptra.exe").read_bytes(), before)
        self.assertIn('"Version"="0.0.9"', registry(MAKER))

    def test_a_service_that_does_not_stop_is_not_removed(self):
        self.install_with_plugin(NEW)
        before = registry(SERVICE), registry(MAKER)
        (DRIVE / "hang").write_text("")
        self.addCleanup((DRIVE / "hang").unlink, missing_ok=True)
        self.refuses("The service could not be stopped", "/x", NEW)
        self.assertEqual((registry(SERVICE), registry(MAKER)), before)
        self.assertTrue((PROGRAMS / "zuZiptraRemoteService.exe").exists())


unittest.main(verbosity=2)
