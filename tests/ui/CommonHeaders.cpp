// Only its precompiled headers count.
