#pragma once

#include <cstddef>
#include <gtest/gtest.h>
#include <pthread.h>

/// Lets no thread be created while it lives: the default stack is larger than the address space.
class NoThreads {
public:
    NoThreads() {
        EXPECT_EQ(::pthread_getattr_default_np(&m_before), 0);
        pthread_attr_t tooLarge = m_before;
        EXPECT_EQ(::pthread_attr_setstacksize(&tooLarge, std::size_t{1} << 60), 0);
        EXPECT_EQ(::pthread_setattr_default_np(&tooLarge), 0);
    }
    ~NoThreads() {
        EXPECT_EQ(::pthread_setattr_default_np(&m_before), 0);
        ::pthread_attr_destroy(&m_before);
    }

    NoThreads(const NoThreads&) = delete;
    NoThreads& operator=(const NoThreads&) = delete;

private:
    pthread_attr_t m_before{};
};
