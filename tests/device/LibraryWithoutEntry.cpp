// A library under the driver's file name that is none.

extern "C" __attribute__((visibility("default"))) int notTheEntryPoint()
{
    return 0;
}
