// A target that owns a precompiled header needs a file to compile.
