"""The rows of the table: each a work, what it shall reach against plain Python and against the floor."""


class Row(object):
    """A row of the table.

    `faster`: at least so many times as fast as plain Python. `over`: at most so many times the floor. `itself`: our
    figure at most. `floor` says what the floor of this row is, `second` what a second floor is where there is one;
    `in_kernel` that the floor is system calls, of which the work is in the kernel; `more` what ours does beyond the floor.
    """

    def __init__(self, key, title, floor, faster=None, over=None, itself=None, second=None, unit="ms", in_kernel=False,
                 more=None):
        self.key, self.title, self.floor, self.second, self.unit, self.more = key, title, floor, second, unit, more
        self.faster, self.over, self.itself, self.in_kernel = faster, over, itself, in_kernel


READ_AND_WRITE = "reading and writing the file once by bare system calls"
FILE_OBJECTS = "the interpreter's own file objects reading the lines and writing the content, as the module has to"
OBJECTS = ("creating the very same result objects in C, from places that are known, out of the sight of the collector of "
           "cycles")
ORDINARY_OBJECTS = "the same, but left for the collector to look at, as whoever makes them in the ordinary way does"
FINDING = "The floor knows where the fields are; ours searches each line for its end and its separators."
ALL = (
    Row("load", "load of the module, host modules already loaded",
        "an extension module that does the same imports and nothing else", faster=1.25, over=1.5,
        second="an extension module that does nothing, not even an import",
        more="Beyond the floor there are the class, its functions and the strings of the names that they look up, and the "
             "loader has to find all functions of the interpreter that they call."),
    Row("catalogue-100", "catalogue of 100 lines", OBJECTS, faster=1, second=ORDINARY_OBJECTS),
    Row("catalogue-10000", "catalogue of 10,000 lines", OBJECTS, faster=2.8, over=1.2, second=ORDINARY_OBJECTS,
        more=FINDING),
    Row("catalogue-1000000", "catalogue of 1,000,000 lines", OBJECTS, faster=2.8, over=1.2, second=ORDINARY_OBJECTS,
        more=FINDING),
    Row("rubbish", "catalogue of comments, blank and broken lines only, 10 MB",
        "one pass of memchr over the body, for a byte that it does not hold", faster=10, over=3,
        second="memchr from one line end to the next, which tells the lines apart and does not look at them",
        more="A line without a separator costs nothing of its own, but half of these lines have some, and each of those has "
             "to be told apart and its separators counted."),
    Row("rows", "list rows for 10,000 entries, host calls not counted",
        "creating the very same rows in C, one new text each, out of the collector's sight", faster=2, over=1.5,
        second="the same with two new texts each, and left for the collector to look at",
        more="Beyond the floor, ours looks `self.list` up for every row and asks the entry for its items, and between the "
             "host's calls it takes their results over and looks for errors."),
    Row("rows-and-calls", "list rows for 10,000 entries, host calls counted", "the same, without any host call"),
    Row("root-file", "root file of 10,000 lines, 1,000 new references, copies not counted",
        READ_AND_WRITE, faster=50, over=2, second=FILE_OBJECTS, in_kernel=True,
        more="Beyond the second floor, ours looks the folders and the copying up by name for every reference and puts the two "
             "paths together; without new references it is as fast as the second floor."),
    Row("merge", "merge of 500 bouquets, everything counted",
        "the system calls of the merge: the look-ups, the copies with times and mode, the root files", faster=1,
        in_kernel=True),
    Row("outside", "merge of 500 bouquets: share of the time outside of host and system calls", None, itself=5,
        unit="%",
        more="What remains is looked up by name for every bouquet: the screen's folders, the functions for paths, the copying; "
             "and the paths are put together."),
    Row("memory", "memory on top of the result, catalogue of 1,000,000 lines", "the body", faster=2, over=1.05,
        unit="MB"),
    Row("growth-catalogue", "growth, one catalogue of 1,000,000 lines to one of 10,000, per line", OBJECTS,
        itself=1.1, unit=u"\u00d7"),
    Row("growth-lines", "growth, the same, as many lines in both: 100 catalogues of 10,000 lines", OBJECTS, itself=1.1,
        unit=u"\u00d7"),
    Row("growth-root-file", "growth, root file and references together \u00d7 10, per line".decode("unicode-escape"),
        READ_AND_WRITE, itself=1.1, second=FILE_OBJECTS, unit=u"\u00d7"),
)
BY_KEY = dict((row.key, row) for row in ALL)

if __name__ == "__main__":
    print " ".join(row.key for row in ALL)
