// Asked by LeakSanitizer when a program starts. The Objective-C runtime and Foundation keep their tables to the end and free
// nothing; Fontconfig holds its pointers as offsets, which nobody can follow; the HEIF encoder drops a block. What of ours leaks is told of as ever.
extern "C" char const* __lsan_default_suppressions()
{
    return "leak:libobjc.so\nleak:libgnustep-base.so\nleak:libfontconfig.so\nleak:libx265.so\n";
}
