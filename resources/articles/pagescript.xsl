<?xml version="1.0" encoding="UTF-8"?>
<!-- Prints journals.js: what the page offers, as one variable holding JSON. -->
<xsl:stylesheet version="1.0" xmlns:xsl="http://www.w3.org/1999/XSL/Transform">
  <xsl:import href="filenames.xsl"/>
  <xsl:output method="text" encoding="US-ASCII"/>

  <xsl:template match="/">
    <xsl:text>// Made from articles/journals.xml when the program is built.
var VexaJournals = [</xsl:text>
    <xsl:apply-templates select="journals/journal"/>
    <xsl:text>
];
</xsl:text>
  </xsl:template>

  <xsl:template match="journal">
    <xsl:if test="position() > 1">,</xsl:if>
    <xsl:text>
    {
        "name": "</xsl:text><xsl:value-of select="@name"/><xsl:text>",
        "code": "</xsl:text><xsl:value-of select="@code"/><xsl:text>",
        "generates": "</xsl:text><xsl:value-of select="@generates"/><xsl:text>",
        "about": "</xsl:text><xsl:value-of select="@about"/><xsl:text>",
        "categories": [</xsl:text>
    <xsl:apply-templates select="category"/>
    <xsl:text>
        ]
    }</xsl:text>
  </xsl:template>

  <xsl:template match="category">
    <xsl:if test="position() > 1">,</xsl:if>
    <xsl:text>
            {"name": "</xsl:text><xsl:value-of select="@name"/>
    <xsl:text>", "label": "</xsl:text>
    <xsl:call-template name="with-capital"><xsl:with-param name="text" select="@name"/></xsl:call-template>
    <xsl:text>", "length": "</xsl:text><xsl:value-of select="@length"/>
    <xsl:text>", "scattering": </xsl:text><xsl:value-of select="boolean(@scattering-outline)"/>
    <xsl:text>, "fromCif": </xsl:text>
    <xsl:value-of select="../@generates != 'nothing' and not(@from-cif = 'no')"/>
    <xsl:text>}</xsl:text>
  </xsl:template>

</xsl:stylesheet>
