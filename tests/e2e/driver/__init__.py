# SPDX-License-Identifier: MIT
"""Drives the real window on a real tailnet, as a person would."""
