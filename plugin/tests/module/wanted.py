"""What the module's functions have to make of texts, step by step, in the interpreter's own operations."""


def address(content):
    """The address of the download folder."""
    line = content[:content.index("\n") + 1] if "\n" in content else content
    return line.strip("src/gz Qel-all ").strip().replace("all", "settings_download/")


def entries(body):
    """The entries of a catalogue."""
    pieces = [line.split(":::") for line in body.split("\n") if line[:1] != "#"]
    return [tuple(piece.strip() for piece in four) for four in pieces if len(four) == 4]


def bouquet_name(line):
    """The name that a root line gives."""
    def between(quote):
        """What stands between the first two quotes, in the arithmetic of a search that gives -1."""
        start = line.find(quote)
        return line[start + 1:line.find(quote, start + 1)]
    name = between('"')
    if name == "" or ('"' not in line and name[:11] != "userbouquet"):
        name = between("'")
    return name


def lines_of(content):
    """The lines of a file with their ends."""
    lines = content.split("\n")
    return [line + "\n" for line in lines[:-1]] + ([lines[-1]] if lines[-1] else [])


def root_file(content, kind, pairs):
    """A root file after the writer, and the pairs that were copied; `content` is None when there was no file."""
    if content is None:
        lines = {
            "tv": ["#NAME Bouquets (TV)\n", '#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.favourites.tv" ORDER BY bouquet\n'],
            "radio": ["#NAME Bouquets (Radio)\n",
                      '#SERVICE 1:7:1:0:0:0:0:0:0:0:FROM BOUQUET "userbouquet.favourites.radio" ORDER BY bouquet\n']}[kind]
    else:
        lines = lines_of(content)
    result = "".join(line.replace("\r", "").replace("\n", "") + "\n" for line in lines)
    copied = []
    for source, target in pairs:
        entry = "#SERVICE 1:7:%d:0:0:0:0:0:0:0:FROM BOUQUET \"%s\" ORDER BY bouquet" % ({"tv": 1, "radio": 2}[kind], target)
        if entry not in lines:
            result += entry + "\n"
            copied.append((source, target))
    return result, copied
