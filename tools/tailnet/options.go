// SPDX-License-Identifier: MIT

package main

import (
	"errors"
	"flag"
	"fmt"
	"os"
)

// options parses the command line of one command.
type options struct {
	*flag.FlagSet
	required []string
}

// newOptions takes the command's name and, for --help, how it is used.
func newOptions(name, synopsis string) *options {
	o := &options{FlagSet: flag.NewFlagSet(name, flag.ContinueOnError)}
	o.SetOutput(os.Stderr)
	o.Usage = func() {
		fmt.Fprintf(o.Output(), "%s\n\nOptions:\n", synopsis)
		o.PrintDefaults()
	}
	return o
}

// require makes an option that has no default.
func (o *options) require(name, what string) *string {
	o.required = append(o.required, name)
	return o.String(name, "", what+" (required)")
}

// parse fails with errUsage, or flag.ErrHelp, once it has said why.
func (o *options) parse(arguments []string) error {
	for _, a := range arguments {
		if a == "--" {
			break
		}
		if a == "-h" || a == "-help" || a == "--help" {
			o.SetOutput(os.Stdout)
		}
	}
	if err := o.Parse(arguments); err != nil {
		if errors.Is(err, flag.ErrHelp) {
			return err
		}
		return errUsage
	}
	for _, name := range o.required {
		if o.Lookup(name).Value.String() == "" {
			return o.wrong("--%s is missing", name)
		}
	}
	return nil
}

// wrong explains what is wrong with the command line.
func (o *options) wrong(format string, arguments ...any) error {
	fmt.Fprintf(o.Output(), "tailnet %s: %s; see tailnet %[1]s --help\n", o.Name(), fmt.Sprintf(format, arguments...))
	return errUsage
}
