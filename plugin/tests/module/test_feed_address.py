"""The addresses of the download folder and of the catalogue, from the receiver's feed configuration."""

import loading
from recording_host import FEED_FILE, call

# The feed file's content and the address of the download folder.
ADDRESSES = (
    ("src/gz Qel-all http://feed.example/feeds/all\n", "http://feed.example/feeds/settings_download/"),
    ("src/gz Qel-all http://feed.example/feeds/all\r\n", "http://feed.example/feeds/settings_download/"),
    ("src/gz Qel-all http://feed.example/feeds/all  \t \n", "http://feed.example/feeds/settings_download/"),
    ("src/gz Qel-all http://feed.example/feeds/all\nsrc/gz Qel-arm http://other.example/arm\n",
     "http://feed.example/feeds/settings_download/"),
    # Every "all", not only the last.
    ("src/gz Qel-all http://install.example/all/allall\n",
     "http://instsettings_download/.example/settings_download//settings_download/settings_download/"),
    ("src/gz Qel-all http://feed.example/aalll/ALL/al\n", "http://feed.example/asettings_download/l/ALL/al"),
    # Without a line end the strip by characters takes from the right as well.
    ("src/gz Qel-all http://feed.example/feeds/all", "http://feed.example/feed"),
    ("src/gz Qel-all http://feed.example/feeds/all/h", "http://feed.example/feeds/settings_download//h"),
    ("src/gz Qel-all http://feed.example/x ", "http://feed.example/x"),
    # The strip is by characters also on the left: any order, any number.
    ("http://feed.example/all\n", "http://feed.example/settings_download/"),
    ("gz src/all-Qel http://feed.example/all\n", "http://feed.example/settings_download/"),
    ("src/gz Qel-all \n", ""),
    ("src/gz Qel-all eagle.example/all\n", ".example/settings_download/"),
    ("src/gz Qel-all all.example/h\n", ".example/h"),
    ("src/gz  Qel-all  http://h/all\n", "http://h/settings_download/"),
    ("\tsrc/gz Qel-all http://h/all\n", "src/gz Qel-settings_download/ http://h/settings_download/"),
    ("src/gz Qel-all \thttp://h/all\n", "http://h/settings_download/"),
    ("# a comment\nsrc/gz Qel-all http://h/all\n", "# a comment"),
    # Nothing at all.
    ("", ""),
    ("\n", ""),
    ("\r\n", ""),
    (" \t\n", ""),
    ("all\n", ""),
    ("\x0b\x0ch\x0b\x0c\n", "h"),
    # Bytes of every kind.
    ("src/gz Qel-all http://h/\0all\0/all\n", "http://h/\0settings_download/\0/settings_download/"),
    ("src/gz Qel-all http://\xc3\xa4.example/\xff\xfe/all\n", "http://\xc3\xa4.example/\xff\xfe/settings_download/"),
    ("src/gz Qel-all h\xa0\n", "h\xa0"),
    ("src/gz Qel-all h\x85\x1c\x1d\n", "h\x85\x1c\x1d"),
    ("src/gz Qel-all http://h/all\rhttp://other/all\n", "http://h/settings_download/\rhttp://other/settings_download/"),
    ("src/gz Qel-all http://h/%s%d{}/all\n", "http://h/%s%d{}/settings_download/"),
    ("x" * 100000 + "all\n", "x" * 100000 + "settings_download/"),
)


class Addresses(loading.ModuleCase):
    """The two addresses."""

    def test_the_folder_and_the_catalogue(self):
        for content, expected in ADDRESSES:
            self.host.write(FEED_FILE, content)
            result = self.module.base_url()
            self.assertEqual((result, type(result)), (expected, str), content[:200])
            result = self.module.info_url()
            self.assertEqual((result, type(result)), (expected + "qel_settings.download", str), content[:200])

    def test_host_calls(self):
        self.host.write(FEED_FILE, "src/gz Qel-all h/all\nsecond\n")
        expected = [call("open", FEED_FILE, "r"), call("readline", FEED_FILE), call("close file", FEED_FILE)]
        self.module.base_url()
        self.assertCalls(expected)
        self.module.info_url()
        self.assertCalls(expected * 2)

    def test_the_file_is_read_at_each_call(self):
        for word in ("one", "two"):
            self.host.write(FEED_FILE, "src/gz Qel-all http://%s/all\n" % word)
            self.assertEqual(self.module.base_url(), "http://%s/settings_download/" % word)
            self.assertEqual(self.module.info_url(), "http://%s/settings_download/qel_settings.download" % word)

    def test_a_missing_file(self):
        for function in (self.module.base_url, self.module.info_url, self.module.parse_download_file):
            error = self.raised(function)
            self.assertEqual((type(error), error.errno), (IOError, 2))
        self.assertEqual(type(self.raised(self.module.download_settings, "a", "/tmp")), IOError)
        self.assertEqual(self.host.named("urlopen"), [])

    def test_the_very_error_of_each_step(self):
        self.host.write(FEED_FILE, "src/gz Qel-all h/all\n")
        for name in ("open", "readline", "close file"):
            self.host.failures = {name: IOError(name)}
            for function in (self.module.base_url, self.module.info_url):
                self.assertIs(self.raised(function), self.host.failures[name])

    def test_the_catalogue_address_is_a_concatenation(self):
        class Address(object):
            """Adds itself."""

            def __add__(self, other):
                return "added", other
        for base, expected in ((u"\xfc/", u"\xfc/qel_settings.download"), (Address(), ("added", "qel_settings.download"))):
            self.replace(base_url=loading.Journal("base_url", base))
            self.assertEqual(self.module.info_url(), expected)
        self.replace(base_url=loading.Journal("base_url", None))
        self.assertIs(type(self.raised(self.module.info_url)), TypeError)


if __name__ == "__main__":
    loading.main()
