"""The overwriting install: its command chain, the end of it, and the reload of what the receiver runs on."""

import os
import subprocess

import loading
import recording_host
from recording_host import MessageBox, call
from test_selection import box

SUCCESS = "Loading new services list finished succesfully."
FAILURE = "Loading the new services list failed.\nPlease try again"
CHAIN = (
    "rm -rf /etc/enigma2/lamedb ; rm -rf /etc/enigma2/*.tv ; rm -rf /etc/enigma2/*.radio ; cp %s/lamedb /etc/enigma2/ ; "
    "cp -r %s/*.tv /etc/enigma2/ ; cp -r %s/*.radio /etc/enigma2/ ;rm -rf %s")
RELOAD = [
    call("readTransponders"), call("eDVBDB.getInstance"), call("reloadServicelist"), call("eDVBDB.getInstance"),
    call("reloadBouquets")]


class Chain(loading.ModuleCase):
    """The command chain."""

    def test_the_command(self):
        for folder in ("/tmp/settings", "/with blank", "/%s", "", "/trailing/"):
            screen = self.screen(tmp_path=folder)
            self.assertIsNone(screen.installNewFavourites(("text", False)))
            self.assertCalls([call("ePopen", CHAIN % ((folder,) * 4), screen.copy_finished)])

    def test_the_configuration_folder_has_no_part_in_it(self):
        screen = self.screen(dest_dir="/elsewhere/")
        screen.installNewFavourites(("text", False))
        self.assertEqual(self.host.calls[0][1][0], CHAIN % (("/tmp/settings",) * 4))
        self.assertEqual(len(self.host.calls), 1)

    def run_chain(self, **files):
        """Runs the command on a receiver with old lists; gives the exit status."""
        for name in ("lamedb", "bouquets.tv", "bouquets.radio", "userbouquet.old.tv", "userbouquet.old.radio", "settings", "x.tv.bak"):
            self.host.write("/etc/enigma2/" + name, "old")
        for name, content in files.items():
            self.host.write("/tmp/settings/" + name.replace("_", "."), content)
        screen = self.screen()
        screen.installNewFavourites(("text", False))
        command = self.host.calls[0][1][0]
        for folder in ("/etc/enigma2", "/tmp/settings"):
            command = command.replace(folder, self.host.real(folder))
        with open(os.devnull, "w") as nothing:
            return subprocess.call(command, shell=True, stderr=nothing)

    def test_what_the_shell_makes_of_it(self):
        self.run_chain(lamedb="new", bouquets_tv="new", bouquets_radio="new", userbouquet_new_tv="new")
        self.assertEqual(self.host.files("/etc/enigma2"), [
            "bouquets.radio", "bouquets.tv", "lamedb", "settings", "userbouquet.new.tv", "x.tv.bak"])
        for name in ("lamedb", "bouquets.tv", "bouquets.radio", "userbouquet.new.tv"):
            self.assertEqual(self.host.read("/etc/enigma2/" + name), "new")
        self.assertFalse(os.path.exists(self.host.real("/tmp/settings")))

    def test_without_radio_files_none_are_left(self):
        self.run_chain(lamedb="new", bouquets_tv="new")
        self.assertEqual(self.host.files("/etc/enigma2"), ["bouquets.tv", "lamedb", "settings", "x.tv.bak"])
        self.assertFalse(os.path.exists(self.host.real("/tmp/settings")))


class Finished(loading.ModuleCase):
    """The end of the chain."""

    def finish(self, reloaded, *arguments, **keywords):
        """The end of the chain."""
        screen = self.screen(init_vars=loading.Journal("init_vars"), reload_settings=loading.Journal("reload_settings", reloaded))
        self.assertIsNone(screen.copy_finished(*arguments, **keywords))
        return screen

    def test_success_closes_the_screen(self):
        for reloaded in (True, 1, "x", [0]):
            self.finish(reloaded, "output", 0, [])
            self.assertCalls([call("reload_settings")] + box(SUCCESS, MessageBox.TYPE_INFO) + [call("close")])
        self.assertEqual(self.host.calls[2][1][2], 1)

    def test_output_and_exit_status_are_not_looked_at(self):
        class Untouchable(object):
            """Refuses to be looked at."""

            def refuse(self, *arguments):
                """Refuses."""
                raise AssertionError("looked at")

            __nonzero__ = __eq__ = __ne__ = __len__ = __iter__ = __str__ = refuse
        for status in (0, 1, 255, None, "x", Untouchable()):
            screen = self.screen(reload_settings=lambda: True)
            screen.copy_finished(Untouchable(), status, Untouchable())
            self.assertEqual([name for name, _, _ in self.host.calls], ["_", "open dialog", "setTitle", "close"])

    def test_a_false_result_goes_back_to_the_catalogue(self):
        for reloaded in (False, None, 0, "", []):
            self.finish(reloaded, "", 0)
            self.assertCalls([call("reload_settings")] + box(FAILURE) + [call("init_vars")])

    def test_an_error_of_the_reload_propagates_without_a_box(self):
        screen = self.screen()
        for name in ("readTransponders", "reloadServicelist", "reloadBouquets"):
            self.host.failures = {name: RuntimeError(name)}
            self.assertIs(self.raised(screen.copy_finished, "", 0), self.host.failures[name])
        self.assertEqual(self.host.named("open dialog", "close"), [])

    def test_the_whole_end(self):
        screen = self.screen()
        screen.copy_finished("", 1, [])
        self.assertCalls(RELOAD + box(SUCCESS, MessageBox.TYPE_INFO) + [call("close")])

    def test_the_box_comes_first_then_its_title_then_the_close(self):
        for name, kept in (("open dialog", 7), ("setTitle", 8), ("close", 9)):
            screen = self.screen()
            self.host.failures = {name: RuntimeError(name)}
            self.assertIs(self.raised(screen.copy_finished, "", 0), self.host.failures[name])
            self.assertEqual(len(self.host.calls), kept)


class Reload(loading.ModuleCase):
    """The reload."""

    def test_without_a_running_tv_screen(self):
        self.assertIs(self.screen().reload_settings(), True)
        self.assertCalls(RELOAD)

    def test_the_open_channel_list_is_rebuilt(self):
        servicelist = recording_host.start_info_bar()
        self.assertIs(self.screen().reload_settings(), True)
        self.assertCalls(RELOAD + [
            call("getRoot"), call("getCurrentSelection"), call("setRoot", servicelist.root),
            call("setCurrentSelection", servicelist.selection)])
        self.assertIs(self.host.calls[-2][1][0], servicelist.root)
        self.assertIs(self.host.calls[-1][1][0], servicelist.selection)

    def test_root_and_selection_of_any_kind(self):
        recording_host.start_info_bar()
        recording_host.InfoBar.instance.servicelist.root = recording_host.InfoBar.instance.servicelist.selection = None
        self.assertIs(self.screen().reload_settings(), True)
        self.assertEqual(self.host.calls[-2:], [call("setRoot", None), call("setCurrentSelection", None)])

    def test_the_instance_is_compared_with_none_by_identity(self):
        class Odd(object):
            """False, and equal to anything."""
            servicelist = recording_host.ServiceList()

            def __nonzero__(self):
                return False

            def __eq__(self, other):
                return True
        recording_host.InfoBar.instance = Odd()
        self.screen().reload_settings()
        self.assertEqual(len(self.host.calls), 9)

    def test_every_failure_leaves_the_method(self):
        recording_host.start_info_bar()
        for point in range(9):
            screen = self.screen()
            self.host.error, self.host.fail_at = RuntimeError(point), point
            self.assertIs(self.raised(screen.reload_settings), self.host.error)
            self.assertEqual(len(self.host.calls), point + 1)

    def test_a_tv_screen_without_a_channel_list(self):
        recording_host.start_info_bar()
        del recording_host.InfoBar.instance.servicelist
        self.assertIs(type(self.raised(self.screen().reload_settings)), AttributeError)
        self.assertEqual(len(self.host.calls), 5)


if __name__ == "__main__":
    loading.main()
