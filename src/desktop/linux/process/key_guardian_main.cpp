// Waits until the program that started it has ended, and has its keys given back if it did not do so itself. It links
// nothing, since it lies in memory for as long as the program does.
#include <unistd.h>

#include <cerrno>

int main(int count, char** arguments) {
    if (count != 2)
        return 64;
    char word = 0;
    ssize_t read = 0;
    do
        read = ::read(STDIN_FILENO, &word, sizeof word);
    while (read < 0 && errno == EINTR);
    if (read > 0)
        return 0;  // dismissed
    char option[] = "--let-keys-go";
    char* const again[] = {arguments[1], option, nullptr};
    ::execv(arguments[1], again);
    return 71;
}
