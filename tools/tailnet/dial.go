// SPDX-License-Identifier: MIT

package main

import (
	"context"
	"io"
	"os"
	"time"
)

const dialUsage = `Usage: tailnet dial --dir DIR --from NODE [--funnel] HOST:PORT

Connects to a TCP port of the tailnet as NODE would, or with --funnel as a
visitor from the internet. Sends standard input, including its end, and copies
the reply to standard output until the other side closes.`

func dial(arguments []string) error {
	o := newOptions("dial", dialUsage)
	dialer := dialerOptions(o)
	if err := o.parse(arguments); err != nil {
		return err
	}
	if o.NArg() != 1 {
		return o.wrong("one HOST:PORT is needed after the options")
	}
	through, err := dialer()
	if err != nil {
		return err
	}
	ctx, cancel := context.WithTimeout(context.Background(), 30*time.Second)
	defer cancel()
	conn, err := through.Dial(ctx, o.Arg(0))
	if err != nil {
		return err
	}
	defer conn.Close()
	go func() {
		io.Copy(conn, os.Stdin)
		if half, ok := conn.(interface{ CloseWrite() error }); ok {
			half.CloseWrite()
		}
	}()
	_, err = io.Copy(os.Stdout, conn)
	return err
}
