#pragma once

#include <QString>

/// Database pages refer to each other by number. In a file that a browser wrote, the pages of a
/// table or index form a tree; in a damaged or made-up one they can form circles, or share pages so
/// that a few of them stand for more rows than any computer can read, which even opening the
/// database may try to do. This takes such references out of a private copy: each page then counts
/// once in its tree, each byte once in its page, and whatever reads the copy ends in time.
///
/// A write-ahead log is respected, and put into the copy when something must be taken out. Returns
/// the number of references taken out; 0, with the copy unchanged, for sound files and for files
/// that are no database; -1 when the copy could not be changed and is not to be read.
int remove_repeated_pages(const QString &copy);
