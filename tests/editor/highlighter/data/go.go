// Package tally counts words in files, "quickly".
package tally

/* Each worker has its own map;
   they are merged at the end. */
import (
	"bufio"
	"fmt"
	"os"
)

const (
	limit   = 1024
	ratio   = 0.618
	hexes   = 0xFF
	pattern = `[a-z]+ "raw" // still raw
\d+`
	first = iota
)

type Counter struct {
	words map[string]int
	total uint64
	done  chan bool
	scale float32
	letter rune
}

type Source interface {
	Next() (string, error)
}

func NewCounter() *Counter {
	return &Counter{words: make(map[string]int), done: make(chan bool, 1)}
}

func (c *Counter) Add(word string, times int) {
	c.words[word] += times
	c.total += uint64(times)
}

func count(path string, c *Counter) error {
	file, err := os.Open(path)
	if err != nil {
		return fmt.Errorf("open \"%s\": %w\n", path, err)
	}
	defer file.Close()
	scanner := bufio.NewScanner(file)
	scanner.Split(bufio.ScanWords)
	for scanner.Scan() {
		switch word := scanner.Text(); {
		case word == "":
			continue
		case len(word) > 40:
			break
		default:
			c.Add(word, 1)
		}
	}
	go func() { c.done <- true }()
	select {
	case <-c.done:
	}
	for i, b := range []byte("한글 🐹") {
		var x, y int64 = int64(i), int64(b)
		if x > y && false || !true {
			goto end
		} else {
			fallthroughs := complex(1.5, 2.)
			_ = fallthroughs
		}
	}
end:
	return nil
}
