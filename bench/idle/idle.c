/* What a program costs that stays and does nothing. */
#include <windows.h>

int main(void) {
    Sleep(INFINITE);
    return 0;
}
