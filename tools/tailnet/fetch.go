// SPDX-License-Identifier: MIT

package main

import (
	"encoding/json"
	"os"

	"tailnet/internal/place"
	"tailnet/internal/reach"
)

const fetchUsage = `Usage: tailnet fetch --dir DIR --from NODE [--funnel] [--head] [--output FILE] URL

Requests an http or https URL as NODE would, or with --funnel as a visitor from
the internet, and prints one line of JSON: status, headers, number of bytes,
their SHA-256, and the body if it is text of at most 64 KiB. Redirects are not
followed. Every HTTP response counts as success, whatever its status.`

func fetch(arguments []string) error {
	o := newOptions("fetch", fetchUsage)
	dialer := dialerOptions(o)
	head := o.Bool("head", false, "ask for the head alone")
	output := o.String("output", "", "file that gets the body")
	if err := o.parse(arguments); err != nil {
		return err
	}
	if o.NArg() != 1 {
		return o.wrong("one URL is needed after the options")
	}
	through, err := dialer()
	if err != nil {
		return err
	}
	method := "GET"
	if *head {
		method = "HEAD"
	}
	answer, err := reach.Fetch(through, method, o.Arg(0), *output)
	if err != nil {
		return err
	}
	return json.NewEncoder(os.Stdout).Encode(answer)
}

// dialerOptions adds the options that select where the connection comes from.
func dialerOptions(o *options) func() (reach.Dialer, error) {
	dir := o.require("dir", "folder of the running tailnet")
	from := o.require("from", "node that connects")
	funnel := o.Bool("funnel", false, "connect from the internet, NODE being Funnel's relay")
	return func() (reach.Dialer, error) {
		record, err := place.Find(*dir)
		if err != nil {
			return reach.Dialer{}, err
		}
		node, err := record.Node(*from)
		return reach.Dialer{Record: record, From: node, Funnel: *funnel}, err
	}
}
