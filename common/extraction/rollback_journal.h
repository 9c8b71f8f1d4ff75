#pragma once

#include <QString>

class extraction_run;

/// Takes changes that the browser did not finish out of the private copy of a database, as the
/// browser itself would when it starts again: copies the "-journal" beside the database and lets
/// SQLite play it back. One that is empty, or was finished, changes nothing. One that SQLite would
/// follow to other files, or that claims more than it holds, is not used. Both are logged with the
/// journal's path, the latter and one that cannot be copied (links are refused) as a problem of the
/// evidence. No journal stays.
void roll_back_copy(const QString &source, const QString &copy, const QString &signature,
                    extraction_run &run);
