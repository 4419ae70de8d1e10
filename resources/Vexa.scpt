-- Called from macros of Microsoft Word by AppleScriptTask. Word itself may read its own container
-- only; these handlers read for it what lies elsewhere.

-- The text of a file; empty when there is no such file.
on readText(posixPath)
	try
		return do shell script "/bin/cat " & quoted form of posixPath
	on error
		return ""
	end try
end readText

-- "yes" or "no", since a macro can only be answered with text.
on fileExists(posixPath)
	try
		do shell script "/bin/test -f " & quoted form of posixPath
		return "yes"
	on error
		return "no"
	end try
end fileExists
