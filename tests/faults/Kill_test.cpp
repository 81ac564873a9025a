// What a process leaves behind that is killed at any moment: every record that was taken, once.
#include <gtest/gtest.h>
