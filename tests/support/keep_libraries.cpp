// Linked into tests with sanitizers: libraries stay in memory until the process ends. Once one is
// unloaded, LeakSanitizer takes for leaked what only its variables led to; on machines with an
// OpenGL driver, Qt loads and unloads that.

extern "C" int dlclose(void*)
{
    return 0;
}
