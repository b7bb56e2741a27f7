#include "catalogue.hpp"

#include "catalogue_rows.hpp"
#include "python/strings.hpp"
#include "screen.hpp"
#include "text/feed_address.hpp"

namespace morvesk::catalogue {

using python::Error;
using python::makeList;
using python::makeText;
using python::makeTuple;
using python::NONE;
using python::Ref;

namespace {

constexpr const char* FEED_FILE = "/etc/opkg/all-feed.conf";
constexpr const char* CATALOGUE_FILE = "qel_settings.download";

// The transfers block the user interface, so they give up soon.
constexpr double TIME_OUT = 5.0;

/// What a transfer brought, or the status of one that brought nothing.
struct Transfer {
    Status status;
    Object body;
};

bool isCaught(const Module& module, const Error& error, Name exceptionClass) {
    return error.matches(module.global(Name::urllib2).attr(exceptionClass).ref());
}

/// The transfer's body, after `prepare` has had its turn at it: what that raises counts as an error of the transfer.
Transfer fetch(const Module& module, const Object& address, Object (*prepare)(const Object& body)) {
    try {
        const auto response = module.global(Name::urllib2).attr(Name::urlopen)({address, NONE, TIME_OUT});
        return {TRANSFERRED, prepare(response.call(Name::read))};
    } catch (const Error& error) {
        // In this order: an HTTP error is a URL error as well.
        if (isCaught(module, error, Name::HTTPError)) return {HTTP_ERROR, {}};
        if (isCaught(module, error, Name::URLError)) return {URL_ERROR, {}};
        throw;
    }
}

Object keep(const Object& body) {
    return body;
}

/// A string is read line by line as it is; any other body has to know how to split itself.
Object splitUnlessString(const Object& body) {
    return PyString_CheckExact(body.get()) ? body : body.attr(Name::split)({"\n"});
}

}  // namespace

Object baseUrl(const Module& module) {
    const auto file = module.open()({FEED_FILE, "r"});
    const auto line = file.call(Name::readline);
    const auto address = text::downloadArea(line.bytes("the first line of the feed configuration"));
    file.call(Name::close);
    return module.object(address);
}

Object infoUrl(const Module& module) {
    return module.global(Name::base_url)().plus(CATALOGUE_FILE);
}

Object parseDownloadFile(const Module& module) {
    auto transfer = fetch(module, module.global(Name::info_url)(), splitUnlessString);
    if (transfer.status != TRANSFERRED) return module.object(makeTuple({transfer.status, NONE}));
    return module.object(makeTuple({TRANSFERRED, readEntries(std::move(transfer.body))}));
}

Object downloadSettings(const Module& module, const Object& name, const Object& folder) {
    const auto transfer = fetch(module, module.global(Name::base_url)().plus(name), keep);
    if (transfer.status == TRANSFERRED) {
        const auto file = module.open()({archivePath(folder), "wb"});
        file.attr(Name::write)({transfer.body});
        file.call(Name::close);
    }
    return module.object(transfer.status);
}

Object getServiceLists(const Module& module, const Object& self) {
    self.setAttr(Name::list, makeList());
    const auto [status, entries] = module.global(Name::parse_download_file)().unpackPair();
    if (status.equals(TRANSFERRED)) {
        appendRows(module, self, entries);
    } else if (status.equals(HTTP_ERROR)) {
        self.attr(Name::list).append()(makeErrorRow(module, HTTP_ERROR));
    } else if (status.equals(URL_ERROR)) {
        self.attr(Name::list).append()(makeErrorRow(module, URL_ERROR));
    }
    screen::showList(self);
    return module.object(NONE);
}

Object downloadFinished(const Module& module, const Object& self) {
    self.setAttr(Name::list, makeList());
    screen::showList(self);
    const auto command =
        makeText("/bin/tar -xzf %s -C %s/", {archivePath(self.attr(Name::tmp_path)), self.attr(Name::tmp_path)});
    self.attr(Name::Console).attr(Name::ePopen)({command, self.attr(Name::untar_finished)});
    return module.object(NONE);
}

Ref makeErrorRow(const Module& module, Status status) {
    return screen::makeNotice(module, "Sorry ...",
                              status == HTTP_ERROR
                                  ? "It seems that your Internet connection is not ok, please check it"
                                  : "Download of services list failes, please be patient and try again later");
}

Object archivePath(const Object& folder) {
    return folder.plus("/settings.tar.gz");
}

}  // namespace morvesk::catalogue
