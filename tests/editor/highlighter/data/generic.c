/* A ring buffer: comments and keywords have no colour here, only "strings" and numbers do. */
#include <stdio.h>
#include "ring.h"

#define SIZE 256
#define RATIO 0.5f

static const char *names[] = {"one", "two \"quoted\"", "", "C:\\temp\\"};
static char quote = '\'', letter = 'x', zero = '\0';

/* Don't forget: an apostrophe opens a string that goes on to the next one's end. */
int ring_put(struct ring *ring, int value)
{
    if (ring->count == SIZE) {
        fprintf(stderr, "full after %d of %d: 가득 참\n", ring->count, 1024);
        return -1;
    }
    ring->items[(ring->head + ring->count++) % SIZE] = value;
    return 0;
}

double mean(const int *values, int count)
{
    double sum = 0.0;
    for (int i = 0; i < count; i++) {
        sum += values[i] * 1.25 + 3. + 0x1F + 1e9 + 7u;
    }
    return count ? sum / count : 0;
}
