# The service-list screen as a plug-in author writes it in Python: what the compiled module is measured against, and the
# reference for its suites. No docstrings here: the module on the receiver has none either, and both pass the same tests.
from Components.Label import Label
from Components.ActionMap import ActionMap
from Components.GUIComponent import GUIComponent
from Components.Sources.StaticText import StaticText
from Components.Pixmap import Pixmap
from Components.MenuList import MenuList
from Components.Console import Console as ComConsole
from Components.Sources.List import List
from Screens.Screen import Screen
from Screens.MessageBox import MessageBox
from Screens.ChoiceBox import ChoiceBox
from Tools.Directories import *
from Tools.LoadPixmap import LoadPixmap
from skin import loadSkin
import urllib2
import datetime
import time
import shutil
import os
from enigma import eServiceReference, eServiceCenter, eDVBDB
from ServiceReference import ServiceReference
from Screens.InfoBar import InfoBar
from Components.NimManager import nimmanager


def base_url():
    f = open("/etc/opkg/all-feed.conf", "r")
    url = f.readline().strip("src/gz Qel-all ")
    f.close()
    return url.strip().replace("all", "settings_download/")


def info_url():
    return base_url() + "qel_settings.download"


def download_settings(f_name, tmp_path):
    url = base_url() + f_name
    try:
        archive = urllib2.urlopen(url, None, 5.0).read()
    except urllib2.HTTPError:
        return 2
    except urllib2.URLError:
        return 3
    f = open(tmp_path + "/settings.tar.gz", "wb")
    f.write(archive)
    f.close()
    return 0


def parse_download_file():
    s_lists = []
    url = info_url()
    try:
        lines = urllib2.urlopen(url, None, 5.0).read().split("\n")
    except urllib2.HTTPError:
        return (2, None)
    except urllib2.URLError:
        return (3, None)
    for line in lines:
        if line.startswith("#"):
            continue
        fields = line.split(":::")
        if len(fields) == 4:
            s_lists.append(tuple([field.strip() for field in fields]))
    return (0, s_lists)


class Morvesk(Screen):
    def __init__(self, session, plugin_path):
        Screen.__init__(self, session)
        self.skinName = ["Morvesk", "Ruskell", "Tollvane"]
        self.skin_path = plugin_path
        self.session = session
        self.tmp_path = "/tmp/settings"
        self.mandatory_files = ("bouquets.tv", "bouquets.radio", "lamedb")
        self.title = _("Download services lists")
        try:
            self["title"] = StaticText(self.title)
        except:
            print 'self["title"] was not found in skin'
        self.list = []
        self.list.append((
            None,
            _("Please wait ..."),
            _(" downloading available service list information"),
            LoadPixmap(cached=True, path=resolveFilename(SCOPE_PLUGINS, "SystemPlugins/QelPanel/pictures/ntptime.png")),
            None))
        self["downloadmenu"] = List(self.list)
        self["key_red"] = StaticText(_("Exit"))
        self["key_green"] = StaticText(_("Ok"))
        self["shortcuts"] = ActionMap(["SetupActions", "ColorActions", "DirectionActions"], {
            "ok": self.keyOk,
            "cancel": self.keyCancel,
            "red": self.keyCancel,
            "green": self.keyOk,
        }, -2)
        self.Console = ComConsole()
        self.onLayoutFinish.append(self.init_vars)

    def init_vars(self):
        self.messagebox_title = _("Download services lists")
        self.getServiceLists()

    def getServiceLists(self):
        self.list = []
        result, s_lists = parse_download_file()
        if result == 0:
            for s_list in s_lists:
                self.list.append((
                    s_list[3],
                    "%s - %s" % (s_list[0], s_list[1]),
                    "%s" % s_list[2],
                    LoadPixmap(
                        cached=True, path=resolveFilename(SCOPE_PLUGINS, "SystemPlugins/QelPanel/pictures/sockets.png")),
                    s_list[1]))
        elif result == 2:
            self.list.append((
                None,
                _("Sorry ..."),
                _("It seems that your Internet connection is not ok, please check it"),
                LoadPixmap(cached=True, path=resolveFilename(SCOPE_PLUGINS, "SystemPlugins/QelPanel/pictures/ntptime.png")),
                None))
        elif result == 3:
            self.list.append((
                None,
                _("Sorry ..."),
                _("Download of services list failes, please be patient and try again later"),
                LoadPixmap(cached=True, path=resolveFilename(SCOPE_PLUGINS, "SystemPlugins/QelPanel/pictures/ntptime.png")),
                None))
        self["downloadmenu"].setList(self.list)

    def keyOk(self):
        cur = self["downloadmenu"].getCurrent()
        if not cur or not cur[0]:
            return
        if not os.path.exists(self.tmp_path):
            try:
                os.makedirs(self.tmp_path)
            except OSError:
                pass
        if not fileExists(self.tmp_path, mode="w"):
            self.session.open(
                MessageBox, _("Sorry, creating download folder failed"), MessageBox.TYPE_ERROR).setTitle(self.messagebox_title)
            return
        result = download_settings(cur[0], self.tmp_path)
        if result == 0:
            self.download_finished()
        elif result == 2:
            self.list = [(
                None,
                _("Sorry ..."),
                _("It seems that your Internet connection is not ok, please check it"),
                LoadPixmap(cached=True, path=resolveFilename(SCOPE_PLUGINS, "SystemPlugins/QelPanel/pictures/ntptime.png")),
                None)]
            self["downloadmenu"].setList(self.list)
        elif result == 3:
            self.list = [(
                None,
                _("Sorry ..."),
                _("Download of services list failes, please be patient and try again later"),
                LoadPixmap(cached=True, path=resolveFilename(SCOPE_PLUGINS, "SystemPlugins/QelPanel/pictures/ntptime.png")),
                None)]
            self["downloadmenu"].setList(self.list)

    def download_finished(self):
        self.list = []
        self["downloadmenu"].setList(self.list)
        cmd = "/bin/tar -xzf %s -C %s/" % (self.tmp_path + "/settings.tar.gz", self.tmp_path)
        self.Console.ePopen(cmd, self.untar_finished)

    def untar_finished(self, result, retval, extra_args=None):
        if retval == 0:
            for name in self.mandatory_files:
                if not os.path.exists(self.tmp_path + "/" + name):
                    self.session.open(
                        MessageBox, _("Sorry, there are some mandatory files missing\nPlease try antoher services list."),
                        MessageBox.TYPE_ERROR).setTitle(self.messagebox_title)
                    self.init_vars()
                    break
            else:
                choice_list = [
                    (_("append to exisiting service lists"), True),
                    (_("overwrite exisiting service lists"), False),
                ]
                self.session.openWithCallback(
                    self.installNewFavourites, ChoiceBox, title=_("How to install new service lists..."), list=choice_list)
        else:
            self.session.open(
                MessageBox, _("Sorry, extracting of services list failed\nPlease try again."),
                MessageBox.TYPE_ERROR).setTitle(self.messagebox_title)
            self.init_vars()

    def installNewFavourites(self, append=("NONE", True)):
        if append and append[1]:
            self.mergeNewFavourites()
            self.copy_finished(self, 0, 0)
        elif append:
            cmd = "rm -rf /etc/enigma2/lamedb ; "
            cmd += "rm -rf /etc/enigma2/*.tv ; "
            cmd += "rm -rf /etc/enigma2/*.radio ; "
            cmd += "cp %s/lamedb /etc/enigma2/ ; " % self.tmp_path
            cmd += "cp -r %s/*.tv /etc/enigma2/ ; " % self.tmp_path
            cmd += "cp -r %s/*.radio /etc/enigma2/ ;" % self.tmp_path
            cmd += "rm -rf %s" % self.tmp_path
            self.Console.ePopen(cmd, self.copy_finished)
        else:
            self.init_vars()

    def copy_finished(self, result, retval, extra_args=None):
        if self.reload_settings():
            self.session.open(
                MessageBox, _("Loading new services list finished succesfully."),
                MessageBox.TYPE_INFO).setTitle(self.messagebox_title)
            self.close()
        else:
            self.session.open(
                MessageBox, _("Loading the new services list failed.\nPlease try again"),
                MessageBox.TYPE_ERROR).setTitle(self.messagebox_title)
            self.init_vars()

    def mergeNewFavourites(self):
        tv_list = []
        radio_list = []
        self.dest_dir = resolveFilename(SCOPE_CONFIG)
        stamp = datetime.datetime.fromtimestamp(time.time()).strftime("%Y-%m-%d_%H-%M-%S")
        with open(self.tmp_path + "/bouquets.tv", "r") as f:
            lines = f.readlines()
        for line in lines:
            name = line[line.find('"') + 1:line.find('"', line.find('"') + 1)]
            if not name or ('"' not in line and not name.startswith("userbouquet")):
                name = line[line.find("'") + 1:line.find("'", line.find("'") + 1)]
            if (name and name.startswith("userbouquet") and name.endswith(".tv") and
                    os.path.exists(self.tmp_path + "/" + name)):
                target = name
                if os.path.exists(self.dest_dir + name):
                    target = name[:-3] + stamp + ".tv"
                tv_list.append((name, target))
        with open(self.tmp_path + "/bouquets.radio", "r") as f:
            lines = f.readlines()
        for line in lines:
            name = line[line.find('"') + 1:line.find('"', line.find('"') + 1)]
            if not name or ('"' not in line and not name.startswith("userbouquet")):
                name = line[line.find("'") + 1:line.find("'", line.find("'") + 1)]
            if (name and name.startswith("userbouquet") and name.endswith(".radio") and
                    os.path.exists(self.tmp_path + "/" + name)):
                target = name
                if os.path.exists(self.dest_dir + name):
                    target = name[:-6] + stamp + ".radio"
                radio_list.append((name, target))
        if tv_list:
            self.writeBouquetFiles("tv", tv_list)
        if radio_list:
            self.writeBouquetFiles("radio", radio_list)
        if os.path.isfile(self.tmp_path + "/lamedb"):
            db = eDVBDB.getInstance()
            db.reloadServicelist()
            db.loadServicelist(self.tmp_path + "/lamedb")
            db.saveServicelist()
        eDVBDB.getInstance().reloadBouquets()

    def writeBouquetFiles(self, root_type, fav_list):
        path = "%sbouquets.%s" % (resolveFilename(SCOPE_CONFIG), root_type)
        if not fileExists(path):
            if root_type == "radio":
                lines = [
                    "#NAME Bouquets (Radio)\n",
                    '#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.favourites.radio" ORDER BY bouquet\n',
                ]
            else:
                lines = [
                    "#NAME Bouquets (TV)\n",
                    '#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.favourites.tv" ORDER BY bouquet\n',
                ]
        else:
            with open(path, "r") as f:
                lines = f.readlines()
        content = ""
        for line in lines:
            content += line.replace("\r", "").replace("\n", "") + "\n"
        for source, target in fav_list:
            if root_type != "radio":
                entry = '#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "%s" ORDER BY bouquet' % target
            else:
                entry = '#SERVICE 1:7:2:0:0:0:0:0:0:0:FROM BOUQUET "%s" ORDER BY bouquet' % target
            if entry not in lines:
                content += entry + "\n"
                shutil.copy2(self.tmp_path + "/" + source, self.dest_dir + target)
        f = open(path, "w")
        f.write(content)
        f.close()

    def reload_settings(self):
        nimmanager.readTransponders()
        eDVBDB.getInstance().reloadServicelist()
        eDVBDB.getInstance().reloadBouquets()
        if InfoBar.instance is not None:
            servicelist = InfoBar.instance.servicelist
            root = servicelist.getRoot()
            currentref = servicelist.getCurrentSelection()
            servicelist.setRoot(root)
            servicelist.setCurrentSelection(currentref)
        return True

    def keyCancel(self):
        if self.Console is not None and len(self.Console.appContainers):
            for name in list(self.Console.appContainers):
                self.Console.kill(name)
        self.close(None)
