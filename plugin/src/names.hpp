// The names that the module looks up in its namespace and on the host's objects.
//
// Each look-up happens at the moment of use, so that whatever stands under a name then is what gets used; their strings
// are made once, when the module is loaded.
#pragma once

namespace morvesk {

// NAME(identifier) for a name that is an identifier of ours too, SPELT(identifier, name) for one that cannot be.
#define MORVESK_NAMES(NAME, SPELT) \
    SPELT(builtin, "__builtins__") \
    SPELT(construct, "__init__")   \
    SPELT(enter, "__enter__")      \
    SPELT(exit, "__exit__")        \
    SPELT(import, "__import__")    \
    SPELT(moduleName, "__name__")  \
    SPELT(translate, "_")          \
    NAME(ActionMap)                \
    NAME(ChoiceBox)                \
    NAME(ComConsole)               \
    NAME(Console)                  \
    NAME(HTTPError)                \
    NAME(InfoBar)                  \
    NAME(List)                     \
    NAME(LoadPixmap)               \
    NAME(MessageBox)               \
    NAME(SCOPE_CONFIG)             \
    NAME(SCOPE_PLUGINS)            \
    NAME(Screen)                   \
    NAME(StaticText)               \
    NAME(TYPE_ERROR)               \
    NAME(TYPE_INFO)                \
    NAME(URLError)                 \
    NAME(appContainers)            \
    NAME(append)                   \
    NAME(base_url)                 \
    NAME(cached)                   \
    NAME(close)                    \
    NAME(copy2)                    \
    NAME(copy_finished)            \
    NAME(datetime)                 \
    NAME(dest_dir)                 \
    NAME(download_finished)        \
    NAME(download_settings)        \
    NAME(eDVBDB)                   \
    NAME(ePopen)                   \
    NAME(encode)                   \
    NAME(errors)                   \
    NAME(exists)                   \
    NAME(fileExists)               \
    NAME(fromtimestamp)            \
    NAME(getCurrent)               \
    NAME(getCurrentSelection)      \
    NAME(getInstance)              \
    NAME(getRoot)                  \
    NAME(getServiceLists)          \
    NAME(info_url)                 \
    NAME(init_vars)                \
    NAME(installNewFavourites)     \
    NAME(instance)                 \
    NAME(isfile)                   \
    NAME(keyCancel)                \
    NAME(keyOk)                    \
    NAME(kill)                     \
    NAME(list)                     \
    NAME(loadServicelist)          \
    NAME(makedirs)                 \
    NAME(mandatory_files)          \
    NAME(mergeNewFavourites)       \
    NAME(messagebox_title)         \
    NAME(mode)                     \
    NAME(nimmanager)               \
    NAME(onLayoutFinish)           \
    NAME(open)                     \
    NAME(openWithCallback)         \
    NAME(os)                       \
    NAME(parse_download_file)      \
    NAME(path)                     \
    NAME(read)                     \
    NAME(readTransponders)         \
    NAME(readline)                 \
    NAME(readlines)                \
    NAME(reloadBouquets)           \
    NAME(reloadServicelist)        \
    NAME(reload_settings)          \
    NAME(resolveFilename)          \
    NAME(saveServicelist)          \
    NAME(servicelist)              \
    NAME(session)                  \
    NAME(setCurrentSelection)      \
    NAME(setList)                  \
    NAME(setRoot)                  \
    NAME(setTitle)                 \
    NAME(shutil)                   \
    NAME(split)                    \
    NAME(skinName)                 \
    NAME(skin_path)                \
    NAME(strftime)                 \
    NAME(time)                     \
    NAME(title)                    \
    NAME(tmp_path)                 \
    NAME(untar_finished)           \
    NAME(urllib2)                  \
    NAME(urlopen)                  \
    NAME(write)                    \
    NAME(writeBouquetFiles)

#define MORVESK_IDENTIFIER(identifier) identifier,
#define MORVESK_SPELT_IDENTIFIER(identifier, name) identifier,
#define MORVESK_STRING(identifier) #identifier "\0"
#define MORVESK_SPELT_STRING(identifier, name) name "\0"

enum class Name { MORVESK_NAMES(MORVESK_IDENTIFIER, MORVESK_SPELT_IDENTIFIER) Count };

/// The names one behind the other, each with its NUL: a table of pointers would have to be relocated at every load.
inline constexpr char NAME_STRINGS[] = MORVESK_NAMES(MORVESK_STRING, MORVESK_SPELT_STRING);

#undef MORVESK_IDENTIFIER
#undef MORVESK_SPELT_IDENTIFIER
#undef MORVESK_STRING
#undef MORVESK_SPELT_STRING
#undef MORVESK_NAMES

}  // namespace morvesk
