// How SQLite meets the files of an address book: as it always does, but a book has two files and no other one is touched.
#pragma once

namespace fax::gad {

// The name of a VFS for sqlite3_open_v2, over the system's own one.
//
// A journal beside a book may be a stranger's, as the book. SQLite lets a journal name a file that several databases
// share while they change together, and deletes that file, whatever it is, when it has undone the change. Our books
// never change together with others, so here a journal that names one is damaged (SQLITE_CORRUPT, before anything is
// undone), and nothing but journals is ever deleted.
char const *own_files_vfs();

}  // namespace fax::gad
