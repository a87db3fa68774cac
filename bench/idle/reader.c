/* Reads the files that its arguments name and all files in the directories that they name: the least that a command
   must do that looks at them. */
#include <dirent.h>
#include <fcntl.h>
#include <stdlib.h>
#include <sys/stat.h>
#include <unistd.h>

static int readFile(int folder, const char* name) {
    struct stat status;
    const int file = openat(folder, name, O_RDONLY);
    if (file < 0 || fstat(file, &status) != 0) return 1;
    char* const bytes = malloc((size_t)status.st_size);
    const ssize_t count = read(file, bytes, (size_t)status.st_size);
    free(bytes);
    close(file);
    return count != status.st_size;
}

int main(int count, char** arguments) {
    int failures = 0;
    for (int i = 1; i < count; ++i) {
        DIR* const folder = opendir(arguments[i]);
        if (folder == NULL) failures += readFile(AT_FDCWD, arguments[i]);
        for (struct dirent* entry; folder != NULL && (entry = readdir(folder)) != NULL;) {
            if (entry->d_type == DT_REG) failures += readFile(dirfd(folder), entry->d_name);
        }
    }
    return failures;
}
