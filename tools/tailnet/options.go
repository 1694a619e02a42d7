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

// newOptions takes the command's name and its usage text for --help.
func newOptions(name, synopsis string) *options {
	o := &options{FlagSet: flag.NewFlagSet(name, flag.ContinueOnError)}
	o.SetOutput(os.Stderr)
	o.Usage = func() {
		fmt.Fprintf(o.Output(), "%s\n\nOptions:\n", synopsis)
		o.PrintDefaults()
	}
	return o
}

// require adds an option that must be given.
func (o *options) require(name, what string) *string {
	o.required = append(o.required, name)
	return o.String(name, "", what+" (required)")
}

// parse returns errUsage after printing what is wrong, or flag.ErrHelp after
// printing the usage.
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

// wrong prints what is wrong with the command line and returns errUsage.
func (o *options) wrong(format string, arguments ...any) error {
	fmt.Fprintf(o.Output(), "tailnet %s: %s; see tailnet %[1]s --help\n", o.Name(), fmt.Sprintf(format, arguments...))
	return errUsage
}
