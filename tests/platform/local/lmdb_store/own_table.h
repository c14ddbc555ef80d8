// SPDX-License-Identifier: Apache-2.0
// A table of a test's own, within one transaction that is never committed.
#pragma once

#include <gtest/gtest.h>
#include <lmdb.h>

#include "tests/support/temporary_folder.h"

class own_table : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_EQ(mdb_env_create(&env_), 0);
        ASSERT_EQ(mdb_env_set_mapsize(env_, 64UL << 20), 0);
        ASSERT_EQ(mdb_env_open(env_, folder_.path().c_str(), MDB_NOLOCK | MDB_NOSYNC, 0600), 0);
        ASSERT_EQ(mdb_txn_begin(env_, nullptr, 0, &txn_), 0);
        ASSERT_EQ(mdb_dbi_open(txn_, nullptr, 0, &table_), 0);
    }
    void TearDown() override {
        mdb_txn_abort(txn_);
        mdb_env_close(env_);
    }

    const temporary_folder folder_;
    MDB_env *env_ = nullptr;
    MDB_txn *txn_ = nullptr;
    MDB_dbi table_ = 0;
};
