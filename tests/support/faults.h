// Expecting run-time errors.

#pragma once

#include "store/fault.h"

#include <gtest/gtest.h>

/// The statement ends in the run-time error `Error::error`.
#define EXPECT_FAULT(statement, error)                                                             \
    try {                                                                                          \
        statement;                                                                                 \
        ADD_FAILURE() << "no run-time error: " #statement;                                         \
    } catch (const quillon::Fault& fault) {                                                        \
        EXPECT_EQ(static_cast<int>(fault.Number()), static_cast<int>(quillon::Error::error))       \
            << #statement;                                                                         \
    }
