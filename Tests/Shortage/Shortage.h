#pragma once

/// A lack of memory in this program for the length of a scope: allocations of operator new fail, and those of the C
/// library as well, unless a sanitizer has its place. One at a time, for a program with one thread.
///
/// A program with the environment variable SHORTAGE_FROM has a lasting one from its start on; one with SHORTAGE_AT
/// lacks that allocation alone.
class Shortage
{
public:
    /// The allocation of that number fails, counted from 1, and when `lasting` all behind it too.
    Shortage(unsigned int first, bool lasting);
    ~Shortage();
    Shortage(const Shortage&) = delete;
    Shortage& operator=(const Shortage&) = delete;

    /// True when an allocation has failed.
    static bool HasStruck();
    /// How many blocks of memory the program holds at present, of those allocations.
    static long CountBlocks();
};
