// The catalogue of channel lists: where it lies, how it and the archives are fetched, and its rows on the screen.
#pragma once

#include "python/module.hpp"

namespace morvesk::catalogue {

using python::Module;
using python::Object;

/// What the transfer functions report. There is no 1.
enum Status { TRANSFERRED = 0, HTTP_ERROR = 2, URL_ERROR = 3 };

/// `base_url()`: the address of the download area, from the feed configuration as it is now.
///
/// Raises IOError where there is no feed configuration.
Object baseUrl(const Module& module);

/// `info_url()`: the address of the catalogue file.
Object infoUrl(const Module& module);

/// `parse_download_file()`: fetches the catalogue.
///
/// Returns (0, list of four-string tuples), (2, None) after an HTTP error or (3, None) after a URL error; raises every
/// other exception of the transfer.
Object parseDownloadFile(const Module& module);

/// `download_settings(f_name, tmp_path)`: fetches an archive and writes it to "settings.tar.gz" in the folder
/// `tmp_path`.
///
/// Returns 0, 2 or 3 as above, having written nothing in the last two cases; raises every other exception of the
/// transfer and of the file.
Object downloadSettings(const Module& module, const Object& name, const Object& folder);

/// `getServiceLists(self)`: fetches the catalogue and shows its rows, or one row that says why there are none.
Object getServiceLists(const Module& module, const Object& self);

/// `download_finished(self)`: empties the list and starts the extraction of the archive.
Object downloadFinished(const Module& module, const Object& self);

/// The row for a transfer that ended in `status`: HTTP_ERROR or URL_ERROR.
python::Ref makeErrorRow(const Module& module, Status status);

/// The archive of the list that is being installed.
Object archivePath(const Object& folder);

}  // namespace morvesk::catalogue
