// SPDX-License-Identifier: Apache-2.0
// What results of LMDB and of the system mean.
#include <cerrno>
#include <gtest/gtest.h>

#include "platform/local/lmdb_store/table_state.h"

namespace {

TEST(CodeOf, KnownResultsHaveTheirCodes) {
    EXPECT_EQ(lmdb_store::code_of(0), ERRCODE_SUCCESS);
    EXPECT_EQ(lmdb_store::code_of(MDB_NOTFOUND), ERRCODE_NOT_FOUND);
    for (const int full : {ENOMEM, ENOSPC, EDQUOT}) {
        EXPECT_EQ(lmdb_store::code_of(full), ERRCODE_NO_MEMORY) << full;
    }
    for (const int absent : {ENOENT, ENOTDIR, EACCES, EPERM, EROFS}) {
        EXPECT_EQ(lmdb_store::code_of(absent), OPSTORE_NO_CLIENT) << absent;
    }
    for (const int busy : {MDB_READERS_FULL, EAGAIN, EMFILE, ENFILE}) {
        EXPECT_EQ(lmdb_store::code_of(busy), OPSTORE_BUSY) << busy;
    }
}

TEST(CodeOf, AnyOtherResultIsDamageAndNeverSuccess) {
    for (const int other :
         {MDB_CORRUPTED, MDB_INVALID, MDB_PANIC, MDB_VERSION_MISMATCH, MDB_BAD_DBI, EIO, EINVAL, -1, 12345, -12345}) {
        EXPECT_EQ(lmdb_store::code_of(other), OPSTORE_DAMAGED) << other;
    }
}

}  // namespace
