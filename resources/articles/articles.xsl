<?xml version="1.0" encoding="UTF-8"?>
<!--
  Writes all ready-made articles into the folder given to xsltproc by -o FOLDER/.
  Their form is that of docs/article-html.md: every importer of HTML takes it, and what is not ASCII
  is a decimal character reference.

  Each article is made in two steps: the outline is written out with its parts and limits in place
  (mode "expand"), and the result is turned into HTML, where tables can then be numbered.
-->
<xsl:stylesheet version="1.0"
    xmlns:xsl="http://www.w3.org/1999/XSL/Transform"
    xmlns:exsl="http://exslt.org/common"
    extension-element-prefixes="exsl">
  <xsl:import href="filenames.xsl"/>

  <xsl:variable name="outlines" select="document('outlines.xml')/outlines"/>
  <xsl:variable name="tables" select="document('tables.xml')/tables"/>

  <xsl:template match="/">
    <xsl:call-template name="write-article">
      <xsl:with-param name="file" select="$fallback-file"/>
      <xsl:with-param name="name" select="'Article'"/>
      <xsl:with-param name="outline" select="'general'"/>
    </xsl:call-template>
    <xsl:apply-templates select="journals/journal/category"/>
  </xsl:template>

  <xsl:template match="category">
    <xsl:variable name="label">
      <xsl:call-template name="with-capital"><xsl:with-param name="text" select="@name"/></xsl:call-template>
    </xsl:variable>
    <xsl:variable name="file"><xsl:call-template name="article-file"/></xsl:variable>
    <xsl:call-template name="write-article">
      <xsl:with-param name="file" select="$file"/>
      <xsl:with-param name="name" select="concat(../@name, ' - ', $label)"/>
      <xsl:with-param name="outline" select="@outline"/>
      <xsl:with-param name="limits" select="@*"/>
    </xsl:call-template>

    <xsl:if test="@scattering-outline">
      <xsl:variable name="scattering-file">
        <xsl:call-template name="article-file">
          <xsl:with-param name="scattering" select="true()"/>
        </xsl:call-template>
      </xsl:variable>
      <xsl:call-template name="write-article">
        <xsl:with-param name="file" select="$scattering-file"/>
        <xsl:with-param name="name" select="concat(../@name, ' - ', $label, ' (small-angle scattering)')"/>
        <xsl:with-param name="outline" select="@scattering-outline"/>
        <xsl:with-param name="limits" select="@*"/>
      </xsl:call-template>
    </xsl:if>
  </xsl:template>

  <!-- One file. "limits": the attributes that hold them. -->
  <xsl:template name="write-article">
    <xsl:param name="file"/>
    <xsl:param name="name"/>
    <xsl:param name="outline"/>
    <xsl:param name="limits" select="/.."/>
    <xsl:variable name="source" select="$outlines/outline[@id = $outline]"/>
    <xsl:if test="not($source)">
      <xsl:message terminate="yes">outlines.xml has no outline "<xsl:value-of select="$outline"/>"</xsl:message>
    </xsl:if>
    <xsl:variable name="article">
      <xsl:apply-templates select="$source/*" mode="expand">
        <xsl:with-param name="limits" select="$limits"/>
      </xsl:apply-templates>
    </xsl:variable>

    <exsl:document href="{$file}" method="xml" encoding="US-ASCII" omit-xml-declaration="yes">
      <xsl:text disable-output-escaping="yes">&lt;!DOCTYPE html&gt;&#10;</xsl:text>
      <html lang="en">
        <xsl:text>&#10;</xsl:text>
        <head>
          <xsl:text>&#10;</xsl:text>
          <meta http-equiv="Content-Type" content="text/html; charset=utf-8"/>
          <xsl:text>&#10;</xsl:text>
          <meta charset="utf-8"/>
          <xsl:text>&#10;</xsl:text>
          <title><xsl:value-of select="$name"/></title>
          <xsl:text>&#10;</xsl:text>
        </head>
        <xsl:text>&#10;</xsl:text>
        <body>
          <xsl:text>&#10;</xsl:text>
          <p class="title"><a name="vexa_title">Title of the article</a></p>
          <xsl:text>&#10;</xsl:text>
          <p class="authors"><a name="vexa_authors">&#160;</a></p>
          <xsl:text>&#10;</xsl:text>
          <p class="addresses"><a name="vexa_addresses">&#160;</a></p>
          <xsl:text>&#10;</xsl:text>
          <p class="guidance">
            <xsl:value-of select="concat('[', $name)"/>
            <xsl:if test="$limits[name() = 'length']">
              <xsl:value-of select="concat(', up to ', $limits[name() = 'length'])"/>
            </xsl:if>
            <xsl:text>. Notes in square brackets are advice: follow them, then delete them. A question mark stands where something is still missing.]</xsl:text>
          </p>
          <xsl:text>&#10;</xsl:text>
          <xsl:apply-templates select="exsl:node-set($article)/*"/>
        </body>
        <xsl:text>&#10;</xsl:text>
      </html>
      <xsl:text>&#10;</xsl:text>
    </exsl:document>
  </xsl:template>

  <!-- First step: parts in the place of their use, limits in the place of their names -->

  <xsl:template match="@* | node()" mode="expand">
    <xsl:param name="limits"/>
    <xsl:copy>
      <xsl:apply-templates select="@* | node()" mode="expand">
        <xsl:with-param name="limits" select="$limits"/>
      </xsl:apply-templates>
    </xsl:copy>
  </xsl:template>

  <xsl:template match="use" mode="expand">
    <xsl:param name="limits"/>
    <xsl:variable name="part" select="$outlines/part[@id = current()/@part]"/>
    <xsl:if test="not($part)">
      <xsl:message terminate="yes">outlines.xml has no part "<xsl:value-of select="@part"/>"</xsl:message>
    </xsl:if>
    <xsl:apply-templates select="$part/*" mode="expand">
      <xsl:with-param name="limits" select="$limits"/>
    </xsl:apply-templates>
  </xsl:template>

  <xsl:template match="guidance[limit]" mode="expand">
    <xsl:param name="limits"/>
    <xsl:if test="$limits[name() = current()/limit/@of]">
      <xsl:copy>
        <xsl:apply-templates mode="expand">
          <xsl:with-param name="limits" select="$limits"/>
        </xsl:apply-templates>
      </xsl:copy>
    </xsl:if>
  </xsl:template>

  <xsl:template match="limit" mode="expand">
    <xsl:param name="limits"/>
    <xsl:value-of select="$limits[name() = current()/@of]"/>
  </xsl:template>

  <!-- Second step: HTML -->

  <xsl:template match="section">
    <xsl:element name="h{count(ancestor-or-self::section)}"><xsl:value-of select="@title"/></xsl:element>
    <xsl:text>&#10;</xsl:text>
    <xsl:apply-templates select="guidance"/>
    <xsl:if test="not(section)">
      <p>?</p>
      <xsl:text>&#10;</xsl:text>
    </xsl:if>
    <xsl:apply-templates select="section | table"/>
  </xsl:template>

  <xsl:template match="guidance">
    <p class="guidance">[<xsl:apply-templates mode="inline"/>]</p>
    <xsl:text>&#10;</xsl:text>
  </xsl:template>

  <!-- A reference to a table -->
  <xsl:template match="section/table">
    <xsl:variable name="shell" select="$tables/table[@id = current()/@ref]"/>
    <xsl:if test="not($shell)">
      <xsl:message terminate="yes">tables.xml has no table "<xsl:value-of select="@ref"/>"</xsl:message>
    </xsl:if>
    <xsl:apply-templates select="$shell">
      <xsl:with-param name="number" select="count(preceding::table) + 1"/>
    </xsl:apply-templates>
  </xsl:template>

  <xsl:template match="tables/table">
    <xsl:param name="number"/>
    <table width="100%">
      <xsl:text>&#10;</xsl:text>
      <caption>Table <xsl:value-of select="concat($number, '. ', @caption)"/></caption>
      <xsl:text>&#10;</xsl:text>
      <xsl:if test="@heading">
        <thead>
          <tr><th scope="col">&#160;</th><th scope="col"><xsl:value-of select="@heading"/></th></tr>
        </thead>
        <xsl:text>&#10;</xsl:text>
      </xsl:if>
      <tbody>
        <xsl:text>&#10;</xsl:text>
        <xsl:apply-templates select="group | row"/>
      </tbody>
      <xsl:text>&#10;</xsl:text>
    </table>
    <xsl:text>&#10;</xsl:text>
    <xsl:apply-templates select="note | guidance"/>
  </xsl:template>

  <xsl:template match="group">
    <tr><th colspan="2"><xsl:apply-templates mode="inline"/></th></tr>
    <xsl:text>&#10;</xsl:text>
  </xsl:template>

  <xsl:template match="row">
    <tr data-row="{@key}"><th scope="row"><xsl:apply-templates mode="inline"/></th><td>?</td></tr>
    <xsl:text>&#10;</xsl:text>
  </xsl:template>

  <xsl:template match="note">
    <p class="note"><xsl:apply-templates mode="inline"/></p>
    <xsl:text>&#10;</xsl:text>
  </xsl:template>

  <xsl:template match="i | sub | sup" mode="inline">
    <xsl:element name="{name()}"><xsl:apply-templates mode="inline"/></xsl:element>
  </xsl:template>

</xsl:stylesheet>
