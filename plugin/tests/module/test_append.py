"""The answer to the question: merge, overwrite, or back to the catalogue."""

import loading
import recording_host
from recording_host import MessageBox, call
from test_overwrite import CHAIN, RELOAD, SUCCESS
from test_selection import box


class Answer(loading.ModuleCase):
    """What each answer leads to."""

    def answer(self, *arguments, **keywords):
        """Gives an answer; the steps are noted, not done. Gives the screen."""
        screen = self.screen(
            mergeNewFavourites=loading.Journal("mergeNewFavourites"), copy_finished=loading.Journal("copy_finished"),
            init_vars=loading.Journal("init_vars"))
        self.assertIsNone(screen.installNewFavourites(*arguments, **keywords))
        return screen

    def test_merge(self):
        for append in (("text", True), ["text", 1], ("", "x"), "ab", ("a", True, "c"), {1: True}):
            screen = self.answer(append)
            self.assertCalls([call("mergeNewFavourites"), call("copy_finished", screen, 0, 0)])

    def test_without_an_argument_it_merges(self):
        screen = self.answer()
        self.assertCalls([call("mergeNewFavourites"), call("copy_finished", screen, 0, 0)])

    def test_overwrite(self):
        for append in (("text", False), ["text", 0], ("text", None), ("", ""), {1: False}):
            screen = self.answer(append)
            self.assertCalls([call("ePopen", CHAIN % (("/tmp/settings",) * 4), screen.copy_finished)])

    def test_back_to_the_catalogue(self):
        for append in (None, False, (), [], "", 0, {}):
            self.answer(append)
            self.assertCalls([call("init_vars")])

    def test_by_keyword(self):
        self.answer(append=None)
        self.assertCalls([call("init_vars")])

    def test_an_answer_without_a_second_element(self):
        screen = self.screen()
        for append, kind in ((("text",), IndexError), ("a", IndexError), (5, TypeError), (object(), TypeError), ({0: 1}, KeyError)):
            self.assertIs(type(self.raised(screen.installNewFavourites, append)), kind)
        self.assertEqual(self.host.calls, [])

    def test_an_error_of_the_merge_comes_before_the_end(self):
        screen = self.screen(
            mergeNewFavourites=loading.Journal("mergeNewFavourites"), copy_finished=loading.Journal("copy_finished"))
        self.host.failures["mergeNewFavourites"] = IOError("x")
        self.assertIs(self.raised(screen.installNewFavourites, ("text", True)), self.host.failures["mergeNewFavourites"])
        self.assertCalls([call("mergeNewFavourites")])

    def test_the_end_is_entered_with_the_screen_itself(self):
        class Own(self.module.Morvesk):
            """Overrides the end in Python."""

            def mergeNewFavourites(self):
                pass

            def copy_finished(self, result, retval, extra_args=None):
                given.append((result, retval, extra_args))
        given = []
        screen = Own(recording_host.Session(), "")
        screen.installNewFavourites()
        (result, retval, extra_args), = given
        self.assertIs(result, screen)
        self.assertEqual((retval, extra_args, type(retval), type(extra_args)), (0, 0, int, int))

    def test_the_real_end(self):
        screen = self.screen(mergeNewFavourites=loading.Journal("mergeNewFavourites"))
        screen.installNewFavourites(("text", True))
        self.assertCalls([call("mergeNewFavourites")] + RELOAD + box(SUCCESS, MessageBox.TYPE_INFO) + [call("close")])

    def test_the_callback_of_the_chain_is_the_instance_s(self):
        class Own(self.module.Morvesk):
            """Overrides the end in Python."""

            def copy_finished(self, result, retval, extra_args=None):
                return "own"
        screen = Own(recording_host.Session(), "")
        screen.installNewFavourites(("text", False))
        self.assertEqual(self.host.calls[-1][1][1]("", 0, []), "own")


if __name__ == "__main__":
    loading.main()
